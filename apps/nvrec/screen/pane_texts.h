/*
 * pane_texts.h - the texts of the panes, of the line at the top and of the question at the end, in both
 * languages.
 */
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "screen/camera_names.h"
#include "screen/pane_state.h"

namespace nvrec
{

class RecordingView;

/** The notice in large letters, and the line below it; both may be empty. */
struct NoticeText {
    std::string title, line;
};

/** @param name  the camera's; @param now  to leave out the date of today */
NoticeText notice_text(const PaneState &state, const std::string &name, std::time_t now, Language language);

/**
 * What is wrong with recording, the most serious first; empty = nothing.
 * @param recorder      null = nobody records
 * @param alarm         what else the recorder has to say
 * @param without_main  channels whose pane shows their sub stream while their main stream does not come
 */
std::string alarm_text(const RecordingView *recorder, const std::string &alarm, const CameraNames &names,
                       const std::vector<int> &without_main = {});

/** Whether both times are on one local day. */
bool same_day(std::time_t a, std::time_t b);

/** "14:05:09", or "2026-03-01 14:05:09" if that is another day than now. */
std::string since_text(std::time_t since, std::time_t now);

} // namespace nvrec
