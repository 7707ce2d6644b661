// What views tell the outside about themselves: numbered notifications to one listener, and a
// record that answers who a view is. A platform's accessibility bridge, or a test, is the listener.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"

class TObject;
class TView;

/// Codes of TView::AccessibilityNotification. Numbers are fixed; new ones go at the end.
enum EAccessibilityCode : int {
    kAccessibility_Created = 1,            ///< the view joined a tree; argument: the view
    kAccessibility_Destroyed = 2,          ///< the view is being freed; argument: the view
    kAccessibility_ShownChanged = 3,       ///< shown or hidden; no argument
    kAccessibility_EnabledChanged = 4,     ///< no argument
    kAccessibility_SuperViewChanged = 5,   ///< argument: the new superview, null for none
    kAccessibility_TargetChanged = 6,      ///< became or resigned the keyboard target; no argument
    kAccessibility_ValueChanged = 7,       ///< a control's value; no argument
    kAccessibility_SizeChanged = 8,        ///< no argument
    kAccessibility_TextChanged = 9,        ///< no argument
    kAccessibility_ChildrenReordered = 10, ///< argument: the subview that moved
    kAccessibility_LocationChanged = 11,   ///< no argument
    kAccessibility_NameChanged = 12,       ///< no argument
    kAccessibility_SelectionChanged = 13,  ///< no argument
    kAccessibility_ScrollChanged = 14      ///< the local origin; no argument
};

/// What a view answers when it is asked who it is.
struct QLX_API TAccessibleInfo {
    std::string mRole = "group"; ///< a word of WAI-ARIA's roles: "button", "slider", "textbox", ...
    std::string mName;           ///< what it is called, in the user's language
    std::string mValue;          ///< what it shows, in the user's language
    bool mEnabled = true;
    bool mTarget = false; ///< whether it has the keyboard
};

/// Hears every notification of every view, while the view is in the state that it reports.
class QLX_API QLX_AccessibilityListener {
  public:
    virtual ~QLX_AccessibilityListener();
    /// The argument is as the code says, null where it says nothing. Must not free the view.
    virtual void ViewNotified(TView* view, int code, TObject* argument) = 0;

    /// The listener in use; null for none.
    [[nodiscard]] static QLX_AccessibilityListener* Get();
    /// Not owned. Returns the previous one.
    static QLX_AccessibilityListener* Install(QLX_AccessibilityListener* listener);
};
