// The application's queue of posted commands and events.
#include <algorithm>
#include <utility>

#include "qlx/views/uapplication.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ustguard.h"

namespace {

void DropEvent(TEvent* event) {
    if (event->ShouldFreeOnCompletion())
        event->Free();
}

} // namespace

void TEventHandler::PostCommand(TCommand* command) {
    if (!command)
        return;
    if (TEventHandler* const next = GetNextHandler())
        next->PostCommand(command);
    else
        DropEvent(command);
}

void TEventHandler::PostAndConsumeEvent(TEvent* event, bool atFront) {
    if (!event)
        return;
    if (TEventHandler* const next = GetNextHandler())
        next->PostAndConsumeEvent(event, atFront);
    else
        DropEvent(event);
}

void TApplication::PostCommand(TCommand* command) {
    if (command)
        Enqueue(command, false);
}

void TApplication::PostAndConsumeEvent(TEvent* event, bool atFront) {
    if (event)
        Enqueue(event, atFront);
}

inline bool TApplication::IsPosted(const TEvent* event) const {
    return std::any_of(mPosted.begin() + static_cast<std::ptrdiff_t>(mPostedHead), mPosted.end(),
                       [event](const Posted& posted) { return posted.mEvent == event; });
}

void TApplication::Enqueue(TEvent* event, bool atFront) {
    // Deliberate: one that is in the queue already stays where it is. It would be freed twice.
    if (CountPosted() != 0 && IsPosted(event))
        return;
    if (!event->IsReadyToPost()) {
        DropEvent(event);
        return;
    }
    const Posted posted{event, mPostTurn, 0};
    if (atFront && mPostedHead > 0) {
        mPosted[--mPostedHead] = posted;
    } else if (atFront) {
        mPosted.insert(mPosted.begin(), posted);
    } else {
        TEvent* const last = CountPosted() == 0 ? nullptr : mPosted.back().mEvent;
        if (last && !last->Merge(event)) {
            DropEvent(event);
            return;
        }
        mPosted.push_back(posted);
        if (last && last->IsCommand() && event->IsCommand())
            static_cast<TCommand*>(last)->NewCommandWasPosted();
    }
}

std::size_t TApplication::CountPosted() const { return mPosted.size() - mPostedHead; }

inline TEvent* TApplication::TakePosted(std::size_t index) {
    TEvent* const event = mPosted[index].mEvent;
    if (index == mPostedHead)
        ++mPostedHead;
    else
        mPosted.erase(mPosted.begin() + static_cast<std::ptrdiff_t>(index));
    // The front part that has been taken is given back when it is all there is, or most of it.
    if (mPostedHead == mPosted.size()) {
        mPosted.clear();
        mPostedHead = 0;
    } else if (mPostedHead > 64 && mPostedHead > mPosted.size() / 2) {
        mPosted.erase(mPosted.begin(), mPosted.begin() + static_cast<std::ptrdiff_t>(mPostedHead));
        mPostedHead = 0;
    }
    return event;
}

TEvent* TApplication::RetrieveAnEvent() {
    for (std::size_t i = mPostedHead; i < mPosted.size(); ++i)
        if (mPosted[i].mEvent->IsReadyToExecute())
            return TakePosted(i);
    return nullptr;
}

// The next event of the queue that was posted before the given turn, is ready, and was not found
// unready in this turn.
inline TEvent* TApplication::TakeReady(std::uint64_t turn) {
    for (std::size_t i = mPostedHead; i < mPosted.size(); ++i) {
        Posted& posted = mPosted[i];
        if (posted.mTurn >= turn || posted.mAskedInTurn == turn)
            continue;
        posted.mAskedInTurn = turn;
        if (posted.mEvent->IsReadyToExecute())
            return TakePosted(i);
    }
    return nullptr;
}

inline void TApplication::ProcessOne(TEvent* event) {
    const StGuard self(this);
    const bool isCommand = event->IsCommand();
    const bool isRecurring = event->IsRecurring();
    if (isCommand && !static_cast<TCommand*>(event)->GetContext()) {
        DropEvent(event);
        return;
    }
    bool isDone = false;
    try {
        event->Process();
        isDone = true;
    } catch (...) {
        ReportSafely("a posted event");
    }
    // A command is ended by the handler that performs it, and may be gone by now.
    const bool isStillHere =
        !isCommand || (isRecurring && TCommandHandler::IsAlive(static_cast<TCommand*>(event)));
    if (!isStillHere)
        return;
    if (isRecurring && isDone && self)
        Enqueue(event, false);
    else if (!isCommand)
        DropEvent(event);
}

int TApplication::ProcessPosted() {
    if (CountPosted() == 0)
        return 0;
    const StGuard self(this);
    const std::uint64_t turn = ++mPostTurn;
    int processed = 0;
    while (self && CountPosted() != 0) {
        TEvent* const event = TakeReady(turn);
        if (!event)
            break;
        ++processed;
        ProcessOne(event);
    }
    return processed;
}

void TApplication::DropPosted() {
    while (CountPosted() != 0)
        DropEvent(TakePosted(mPostedHead));
}

void TApplication::ForgetPosted(TEventHandler* handler) {
    for (std::size_t i = mPostedHead; i < mPosted.size();) {
        TEvent* const event = mPosted[i].mEvent;
        if (event->mSource == handler)
            event->mSource = nullptr;
        const bool isForHandler =
            event->mHandler == handler ||
            (event->IsCommand() && static_cast<TCommand*>(event)->GetContext() == handler);
        if (!isForHandler) {
            ++i;
            continue;
        }
        DropEvent(TakePosted(i));
        i = mPostedHead;
    }
}
