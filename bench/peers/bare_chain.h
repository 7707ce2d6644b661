// The plainest chain that makes as many virtual calls per hop as the framework's: what a key costs
// when nothing is done but calling.
#pragma once

class BareHandler;

class BareBehavior {
  public:
    virtual ~BareBehavior();
    virtual bool IsEnabled();
    virtual BareBehavior* Next();
    virtual void Do(int* event);
    bool mEnabled = true;
    BareBehavior* mNext = nullptr; // not owned
    BareHandler* mOwner = nullptr; // not owned
};

class BareHandler {
  public:
    virtual ~BareHandler();
    virtual BareHandler* Next();
    virtual BareBehavior* FirstBehavior();
    virtual void Handle(int* event);
    virtual void Do(int* event);
    BareHandler* mNext = nullptr;      // not owned
    BareBehavior* mBehavior = nullptr; // not owned
};
