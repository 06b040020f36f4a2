/*
 * notice_line.h - a line at the top of the screen while something is wrong with the recorder: white
 * on red, over pictures and panes.
 */
#pragma once

#include <string>

#include "screen/camera_names.h"
#include "screen/canvas.h"
#include "screen/font.h"

namespace nvrec
{

class NoticeLine
{
public:
    NoticeLine(Font &font, ChineseScript script, int size_px)
        : font_(font), script_(script), size_px_(size_px)
    {
    }

    /** Show this text, in UTF-8; empty = nothing. @param most_px  how wide it may be. @return what to paint
     * anew.
     */
    Rect set(const std::string &text, int most_px);

    void paint(Canvas &canvas) const;
    const Rect &place() const { return place_; }
    const std::string &text() const { return text_; }

private:
    Font &font_;
    const ChineseScript script_;
    const int size_px_;
    std::string text_;
    Tile tile_;
    Rect place_; /* empty = there is none */
};

} // namespace nvrec
