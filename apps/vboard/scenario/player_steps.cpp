/* player_steps.cpp - the steps of a scenario, each in its turn; see player_self.h. */
#include "scenario/player_self.h"

namespace vboard_app::scenario
{
/* The next step, if it is due. True: it was done. */
bool Player::take_step(Moment &moment)
{
    // Steps with a time do not wait for a condition before them.
    for (size_t i = next_step_; i < scenario_.steps.size(); ++i) {
        const Step &step = scenario_.steps[i];
        if (done_.contains(i)) continue;
        if (step.when.at_us) {
            if (*step.when.at_us > now_us_) continue;
            carry_out(i);
            return true;
        }
        if (i != first_open()) continue; // what comes after something waits for the step before it
        if (!step.when.after || is_met(step, moment)) {
            carry_out(i);
            return true;
        }
    }
    return false;
}

size_t Player::first_open() const
{
    size_t first = next_step_;
    while (done_.contains(first))
        ++first;
    return first;
}

bool Player::is_met(const Step &step, Moment &moment)
{
    if (step_due_us_) return *step_due_us_ <= now_us_;
    if (!waiting_) waiting_.emplace(*step.when.after, last_step_us_);
    switch (waiting_->look(moment)) {
    case Waiting::Word::waits: return false;
    case Waiting::Word::too_late:
        fail(step.line, step.text,
             "what it comes after did not come within " + time_text(*step.when.after->within_us) + ": " +
                 waiting_->seen());
        throw Broken("it was given up: a step could not be done");
    case Waiting::Word::met: step_due_us_ = waiting_->due_us(); break;
    }
    return *step_due_us_ <= now_us_;
}

void Player::carry_out(size_t index)
{
    const Step &step = scenario_.steps[index];
    if (step.signal)
        session_.send_signal(*step.signal);
    else if (!step.shot.empty())
        take_shot(step);
    else
        carry_out(step.line, step.request);
    if (!step.when.at_us) {
        waiting_.reset();
        step_due_us_.reset();
    }
    done_.insert(index);
    last_step_us_ = now_us_;
    next_step_ = first_open();
}

void Player::carry_out(int line, const Request &request)
{
    try {
        if (request.name == "clock.step" && scenario_.board.stepped)
            now_us_ += request.parameters.value("by", int64_t{0});
        board_.request(request.name, request.parameters);
        if (request.name == "power") powered_ = request.parameters.value("to", "on") != "off";
    } catch (const RequestError &error) {
        fail(line, request.name, error.what());
        throw Broken("it was given up: a step could not be done");
    }
}

void Player::take_shot(const Step &step)
{
    try {
        const std::string path = output_path(step.shot);
        if (write_png(path, image_of(board_.picture()))) return;
        fail(step.line, step.text, "cannot write " + path);
    } catch (const RequestError &error) {
        fail(step.line, step.text, error.what());
    }
    throw Broken("it was given up: a step could not be done");
}

void Player::give_up_steps(const std::string &why)
{
    const size_t open = first_open();
    if (open >= scenario_.steps.size()) return;
    fail(scenario_.steps[open].line, scenario_.steps[open].text, "it was not done: " + why);
    next_step_ = scenario_.steps.size();
}

} // namespace vboard_app::scenario
