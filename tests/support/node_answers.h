/* node_answers.h - what the drivers of the recording platform's nodes answer when no script does. */
#pragma once

#include <string>

namespace recording
{

/** Fill the record of a request that reads. Requests that write, and unknown ones, change nothing. */
void answer_request(const std::string &path, unsigned long request, void *record);

} // namespace recording
