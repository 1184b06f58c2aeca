#include "tests/support/FakeTime.h"

namespace mirovane::test {

class FakeTimers::FakeTimer final : public Timer {
public:
    FakeTimer(FakeTimers& owner, std::uint64_t id) : owner_(owner), id_(id) {}
    ~FakeTimer() override { owner_.entries_.erase(id_); }

    bool start(std::chrono::milliseconds period) override {
        if (owner_.exhausted_)
            return false;
        Entry& entry = owner_.entries_.at(id_);
        entry.active = true;
        entry.period = period;
        entry.due = owner_.clock_.monotonic() + period;
        return true;
    }
    void stop() override { owner_.entries_.at(id_).active = false; }
    bool active() const override { return owner_.entries_.at(id_).active; }

private:
    FakeTimers& owner_;
    std::uint64_t id_;
};

std::unique_ptr<Timer> FakeTimers::makeTimer(std::function<void()> onTick) {
    const std::uint64_t id = nextId_++;
    entries_[id].onTick = std::move(onTick);
    return std::make_unique<FakeTimer>(*this, id);
}

FakeTimers::Entry* FakeTimers::nextDue(std::chrono::steady_clock::time_point until) {
    Entry* first = nullptr;
    for (auto& [id, entry] : entries_)
        if (entry.active && entry.due <= until && (!first || entry.due < first->due))
            first = &entry;
    return first;
}

void FakeTimers::advance(std::chrono::milliseconds span) {
    const auto until = clock_.monotonic() + span;
    while (Entry* entry = nextDue(until)) {
        if (entry->due > clock_.monotonic())
            clock_.advance(entry->due - clock_.monotonic());
        entry->due += entry->period;
        const auto onTick = entry->onTick; // the tick may destroy its timer
        onTick();
    }
    if (until > clock_.monotonic())
        clock_.advance(until - clock_.monotonic());
}

} // namespace mirovane::test
