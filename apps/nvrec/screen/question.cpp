/* question.cpp - see question.h. */
#include "screen/question.h"

#include <algorithm>
#include <array>

namespace nvrec
{
namespace
{

constexpr Colour kQuestionGround = 0x1C222A, kQuestionTitle = 0x2A323C, kQuestionEdge = 0x4A5460;
constexpr Colour kLitAnswer = 0x1868C0, kQuestionLetters = 0xE4E8EC, kLitAnswerLetters = 0xFFFFFF;

} // namespace

Question::Question(Font &font, ChineseScript script, int text_size_px, const std::string &text,
                   const std::string &no, const std::string &yes)
{
    constexpr int kWidest_px = 1000;
    auto mask = [&](const std::string &line) {
        return font.render(units_of(line, script), text_size_px, kWidest_px);
    };
    text_ = flat(mask(text), kLitAnswerLetters, kQuestionTitle);
    const std::array<const std::string *, std::tuple_size_v<decltype(answers_)>> words = {&no, &yes};
    for (size_t i = 0; i < words.size(); ++i) {
        const Mask letters = mask(*words[i]);
        answers_[i] = {flat(letters, kLitAnswerLetters, kLitAnswer),
                       flat(letters, kQuestionLetters, kQuestionGround)};
    }
    row_px_ = (text_.height + text_size_px * 3 / 4) & ~1;
}

Rect Question::open(const Rect &screen)
{
    int width = text_.width;
    for (const Answer &answer : answers_)
        width = std::max(width, answer.lit.width);
    width = std::min(width + 2 * row_px_, screen.w) & ~1;
    const int height = row_px_ * static_cast<int>(answers_.size() + 1);
    place_ = {screen.x + (screen.w - width) / 2, screen.y + (screen.h - height) / 2, width, height};
    lit_ = 0;
    open_ = true;
    return place_;
}

Rect Question::close()
{
    open_ = false;
    return place_;
}

Rect Question::answer_place(size_t index) const
{
    return {place_.x, place_.y + row_px_ * static_cast<int>(index + 1), place_.w, row_px_};
}

Rect Question::step()
{
    lit_ = 1 - lit_;
    return place_;
}

bool Question::is_on_answer(int x, int y) const
{
    return open_ && place_.contains(x, y) && y >= place_.y + row_px_;
}

Rect Question::point_at(int x, int y)
{
    if (!is_on_answer(x, y)) return {};
    const size_t at = answer_place(1).contains(x, y) ? 1 : 0;
    return at == lit_ ? Rect{} : step();
}

void Question::paint(Canvas &canvas) const
{
    if (!open_) return;
    canvas.fill(place_, kQuestionGround);
    canvas.fill({place_.x, place_.y, place_.w, row_px_}, kQuestionTitle);
    auto centred = [&](const Tile &tile, const Rect &row) {
        canvas.draw(tile, row.x + (row.w - tile.width) / 2, row.y + (row.h - tile.height) / 2);
    };
    centred(text_, {place_.x, place_.y, place_.w, row_px_});
    for (size_t i = 0; i < answers_.size(); ++i) {
        const Rect row = answer_place(i);
        if (i == lit_) canvas.fill(row, kLitAnswer);
        centred(i == lit_ ? answers_[i].lit : answers_[i].unlit, row);
    }
    canvas.frame(place_, 2, kQuestionEdge);
}

Question question_of_ending(Font &font, const CameraNames &names, int text_size_px)
{
    const bool chinese = names.language == Language::kChinese;
    return {font,
            names.script,
            text_size_px,
            chinese ? "正在录像。确定要退出吗？" : "Cameras are being recorded. End recording?",
            chinese ? "继续录像" : "Go on recording",
            chinese ? "停止录像并退出" : "End recording and quit"};
}

} // namespace nvrec
