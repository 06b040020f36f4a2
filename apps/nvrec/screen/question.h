/*
 * question.h - a question in the middle of the screen with two answers below each other. The first one, which
 * changes nothing, is highlighted at first. The overlay carries out the answer.
 */
#pragma once

#include <array>
#include <string>

#include "screen/camera_names.h"
#include "screen/canvas.h"
#include "screen/font.h"

namespace nvrec
{

class Question
{
public:
    /** @param text, no, yes  in UTF-8 */
    Question(Font &font, ChineseScript script, int text_size_px, const std::string &text,
             const std::string &no, const std::string &yes);

    /** Open in the middle of the screen. @return what to paint anew. */
    Rect open(const Rect &screen);
    Rect close();
    bool is_open() const { return open_; }

    /** Highlight the other answer, or the one at a place. @return what to paint anew. */
    Rect step();
    Rect point_at(int x, int y);

    /** Whether a place lies on an answer, and whether the highlighted answer is "yes". */
    bool is_on_answer(int x, int y) const;
    bool is_yes() const { return lit_ == 1; }

    const Rect &place() const { return place_; }
    Rect answer_place(size_t index) const; /* 0 = no, 1 = yes */

    void paint(Canvas &canvas) const;

private:
    struct Answer {
        Tile lit, unlit;
    };

    Tile text_;
    std::array<Answer, 2> answers_;
    int row_px_ = 0;
    bool open_ = false;
    size_t lit_ = 0;
    Rect place_;
};

/** The question before the recorder ends, in that language. */
Question question_of_ending(Font &font, const CameraNames &names, int text_size_px);

} // namespace nvrec
