// The application's queue of posted commands and events, and what it asks of commands. Both are in
// one source, so that the compiler can merge the answers into the questions.
#include "basekit/cmn/cmn_internal.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ustguard.h"

namespace {

void DropEvent(TEvent* event) {
    if (event->ShouldFreeOnCompletion())
        event->Free();
}

// Most of what is posted is commands, and most of them answer as TCommand does.

bool IsReadyToPost(TEvent* event) {
    return event->IsCommand() ? static_cast<TCommand*>(event)->IsReadyToPost()
                              : event->IsReadyToPost();
}

bool IsReadyToExecute(TEvent* event) {
    return event->IsCommand() ? static_cast<TCommand*>(event)->IsReadyToExecute()
                              : event->IsReadyToExecute();
}

bool IsRecurring(TEvent* event) {
    return event->IsCommand() ? static_cast<TCommand*>(event)->IsRecurring() : event->IsRecurring();
}

void Process(TEvent* event) {
    if (event->IsCommand())
        static_cast<TCommand*>(event)->Process();
    else
        event->Process();
}

} // namespace

bool TCommand::IsReadyToPost() { return true; }

bool TCommand::IsReadyToExecute() { return mReadyToExecute; }

bool TCommand::IsRecurring() { return mRecurring; }

void TCommand::Process() {
    if (mContext)
        mContext->PerformCommand(this);
}

void TApplication::PostCommand(TCommand* command) {
    if (command)
        Enqueue(command, false);
}

void TApplication::PostAndConsumeEvent(TEvent* event, bool atFront) {
    if (event)
        Enqueue(event, atFront);
}

inline TApplication::Posted* TApplication::FirstPosted() { return mPosted.data() + mPostedHead; }

inline TApplication::Posted* TApplication::EndOfPosted() { return mPosted.data() + mPosted.size(); }

inline bool TApplication::HasPosted() { return FirstPosted() != EndOfPosted(); }

inline TApplication::Posted* TApplication::FindPosted(const TEvent* event) {
    Posted* posted = FirstPosted();
    while (posted != EndOfPosted() && posted->mEvent != event)
        ++posted;
    return posted != EndOfPosted() ? posted : nullptr;
}

void TApplication::Enqueue(TEvent* event, bool atFront) {
    // Deliberate: one that is in the queue already stays where it is. It would be freed twice.
    if (HasPosted() && FindPosted(event))
        return;
    if (!IsReadyToPost(event))
        DropEvent(event);
    else if (atFront || HasPosted())
        EnqueueAmongOthers(event, atFront);
    else
        mPosted.emplace_back(event, mPostTurn);
}

QLX_STANDS_ALONE void TApplication::EnqueueAmongOthers(TEvent* event, bool atFront) {
    if (atFront && mPostedHead > 0) {
        mPosted[--mPostedHead] = Posted(event, mPostTurn);
        return;
    }
    if (atFront) {
        mPosted.emplace(mPosted.begin(), event, mPostTurn);
        return;
    }
    TEvent* const last = mPosted.back().mEvent;
    if (!last->Merge(event)) {
        DropEvent(event);
        return;
    }
    mPosted.emplace_back(event, mPostTurn);
    if (last->IsCommand() && event->IsCommand())
        static_cast<TCommand*>(last)->NewCommandWasPosted();
}

std::size_t TApplication::CountPosted() const { return mPosted.size() - mPostedHead; }

inline TEvent* TApplication::TakePosted(Posted* posted) {
    TEvent* const event = posted->mEvent;
    if (posted != FirstPosted()) {
        mPosted.erase(mPosted.begin() + (posted - mPosted.data()));
        return event;
    }
    // The front part that has been taken is given back when it is all there is, or most of it.
    ++mPostedHead;
    if (!HasPosted()) {
        mPosted.clear();
        mPostedHead = 0;
    } else if (mPostedHead > 64 && mPostedHead > mPosted.size() / 2) {
        mPosted.erase(mPosted.begin(), mPosted.begin() + static_cast<std::ptrdiff_t>(mPostedHead));
        mPostedHead = 0;
    }
    return event;
}

/// Takes an event out of the queue when it is ready. The question is the host's code and may have
/// posted something before it.
inline TEvent* TApplication::TakeIfReady(TEvent* event) {
    if (!IsReadyToExecute(event))
        return nullptr;
    Posted* const posted = FindPosted(event);
    return posted ? TakePosted(posted) : nullptr;
}

TEvent* TApplication::RetrieveAnEvent() {
    for (std::size_t i = mPostedHead; i < mPosted.size(); ++i)
        if (TEvent* const event = TakeIfReady(mPosted[i].mEvent))
            return event;
    return nullptr;
}

// The next event of the queue that was posted before the given turn, is ready, and was not found
// unready in this turn.
inline TEvent* TApplication::TakeReady(std::uint64_t turn) {
    for (std::size_t i = mPostedHead; mPosted.data() + i < EndOfPosted(); ++i) {
        Posted& posted = mPosted[i];
        if (posted.mTurn >= turn || posted.mAskedInTurn == turn)
            continue;
        posted.mAskedInTurn = turn;
        if (TEvent* const event = TakeIfReady(posted.mEvent))
            return event;
    }
    return nullptr;
}

inline void TApplication::ProcessOne(TEvent* event, const StGuard& self) {
    const bool isCommand = event->IsCommand();
    const bool isRecurring = IsRecurring(event);
    if (isCommand && !static_cast<TCommand*>(event)->GetContext()) {
        DropEvent(event);
        return;
    }
    bool isDone = false;
    try {
        Process(event);
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

QLX_MERGES_CALLS int TApplication::ProcessPosted() {
    if (!HasPosted())
        return 0;
    const StGuard self(this);
    const std::uint64_t turn = ++mPostTurn;
    int processed = 0;
    do {
        TEvent* const event = TakeReady(turn);
        if (!event)
            break;
        ++processed;
        ProcessOne(event, self);
    } while (self && HasPosted());
    return processed;
}

void TApplication::DropPosted() {
    while (HasPosted())
        DropEvent(TakePosted(FirstPosted()));
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
        DropEvent(TakePosted(&mPosted[i]));
        i = mPostedHead;
    }
}
