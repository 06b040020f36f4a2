/* timeline.cpp - see timeline.h. */
#include "scenario/timeline.h"

#include <algorithm>

namespace vboard_app::scenario
{

using Word = Verdict::Word;

Waiting::Word Waiting::look(Moment &now)
{
    condition_.check->watch(now);
    const Verdict verdict = condition_.check->judge(now, from_us_);
    if (verdict.word == Verdict::Word::holds) {
        met_us_ = now.now_us;
        return Word::met;
    }
    seen_ = verdict.seen;
    const auto deadline = deadline_us();
    return deadline && now.now_us >= *deadline ? Word::too_late : Word::waits;
}

std::optional<int64_t> Waiting::deadline_us() const
{
    if (!condition_.within_us) return {};
    return from_us_ + *condition_.within_us;
}

Judgement::Judgement(const Expectation &expectation) : expectation_(&expectation)
{
    if (expectation.when.after) waiting_.emplace(*expectation.when.after, 0);
}

bool Judgement::has_own_time() const
{
    const When &when = expectation_->when;
    return when.at_us || when.within_us || when.during_us || when.after;
}

std::optional<int64_t> Judgement::at_us() const
{
    const When &when = expectation_->when;
    if (when.after) return after_us_;
    if (when.at_us) return when.at_us;
    if (when.within_us) return 0;
    return {};
}

void Judgement::decide(bool passed, const std::string &seen)
{
    decided_ = true;
    passed_ = passed;
    seen_ = seen.empty() ? "it was so" : seen;
}

/* No more looks will follow. */
void Judgement::judge_at_last(const Verdict &verdict)
{
    const bool held = verdict.word == Word::holds || (verdict.word == Word::open && verdict.holds_if_over);
    if (expectation_->never)
        decide(!held, verdict.seen);
    else
        decide(held, verdict.seen);
}

void Judgement::look(Moment &now)
{
    if (decided_) return;
    const When &when = expectation_->when;
    if (waiting_ && !after_us_) {
        switch (waiting_->look(now)) {
        case Waiting::Word::waits: return;
        case Waiting::Word::too_late:
            return decide(false,
                          "what it comes after, " + when.after->text + ", did not come: " + waiting_->seen());
        case Waiting::Word::met: after_us_ = waiting_->due_us(); break;
        }
    }
    if (when.during_us) return look_during(now, when.during_us->first, when.during_us->second);
    if (const auto at = at_us()) {
        if (when.within_us) return look_within(now, *at, *at + *when.within_us);
        return look_at(now, *at);
    }
    Check &check = *expectation_->check;
    if (check.span_us() > 0 || (expectation_->never && !check.counts_events())) check.watch(now);
    if (!expectation_->never || check.counts_events() || check.needs_end()) return;
    const Verdict verdict = check.judge(now, 0);
    if (verdict.word == Word::holds) decide(false, verdict.seen);
}

void Judgement::look_at(Moment &now, int64_t at_us)
{
    Check &check = *expectation_->check;
    if (now.now_us < at_us - check.span_us()) return;
    check.watch(now);
    if (now.now_us < at_us) return;
    judge_at_last(check.judge(now, check.counts_events() ? 0 : at_us - check.span_us()));
}

void Judgement::look_within(Moment &now, int64_t from_us, int64_t to_us)
{
    if (now.now_us < from_us) return;
    Check &check = *expectation_->check;
    check.watch(now);
    const Verdict verdict = check.judge(now, from_us);
    if (now.now_us >= to_us) return judge_at_last(verdict);
    if (verdict.word == Word::holds) decide(!expectation_->never, verdict.seen);
}

void Judgement::look_during(Moment &now, int64_t from_us, int64_t to_us)
{
    if (now.now_us < from_us) return;
    Check &check = *expectation_->check;
    check.watch(now);
    if (check.counts_events()) {
        if (now.now_us >= to_us) judge_at_last(check.judge(now, from_us));
        return;
    }
    const Verdict verdict = check.judge(now, from_us);
    if (now.now_us >= to_us) return judge_at_last(verdict);
    const Word wrong = expectation_->never ? Word::holds : Word::fails;
    if (verdict.word == wrong) decide(false, verdict.seen);
}

void Judgement::look_at_end(Moment &now, bool ended)
{
    if (decided_ || has_own_time()) return;
    Check &check = *expectation_->check;
    if (check.needs_end() && !ended) return;
    check.watch(now);
    judge_at_last(check.judge(now, check.counts_events() ? 0 : now.now_us - check.span_us()));
}

void Judgement::give_up(const std::string &why)
{
    if (!decided_) decide(false, why);
}

std::optional<int64_t> Judgement::next_us(int64_t now_us) const
{
    if (decided_) return {};
    std::optional<int64_t> next;
    const auto consider = [&](std::optional<int64_t> time) {
        if (time && *time > now_us && (!next || *time < *next)) next = time;
    };
    const When &when = expectation_->when;
    if (when.during_us) {
        consider(when.during_us->first);
        consider(when.during_us->second);
    }
    if (const auto at = at_us()) {
        consider(*at);
        consider(std::max<int64_t>(0, *at - expectation_->check->span_us()));
        if (when.within_us) consider(*at + *when.within_us);
    }
    if (waiting_ && !after_us_) consider(waiting_->deadline_us());
    return next;
}

} // namespace vboard_app::scenario
