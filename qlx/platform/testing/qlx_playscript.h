// Play scripts: what a user does, as text, with expectations and pictures. Hosts ship them as
// demos, record them from real sessions, and run them as tests.
//
// A line is a step; blanks separate words; '#' begins a comment. A view is named by its identifier
// in single quotes ('play'), a place by two numbers (120,44: logical pixels of the window), a text
// by double quotes, in which \" \\ \n and \t stand for characters. Chords are written
// "Ctrl+Shift+Z".
//
//     click 'play'               press and release, at a view's middle or at a place
//     doubleclick 120,44
//     press 10,10 [Shift+Ctrl]   with the keys held; release, move 20,20 go with it
//     drag 10,10 200,10          from place to place
//     wheel 'wave' -3            notches; above 0 away from the user
//     type "01:02:03:04"         a key for every character
//     chord Ctrl+Z               a key with others held; also "chord Return", "chord F10"
//     compose "かな" "仮名"      an input method's composition, and what was entered
//     resize 1000 700            the window's size
//     step 0.5                   seconds that pass
//     expect 'main' "00:00:01:00"    a view's value as its user reads it
//     expect name 'play' "Play"      what a view is called
//     expect target 'main'           which view has the keyboard
//     expect shown 'tip ' no         yes or no
//     picture "out.png"          what is on the screen, beside the script unless the path is
//     absolute
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basekit/cmn/cmn_types.h"

class QLX_TestDriver;

/// What came of playing a script.
struct QLX_PlayResult {
    int mSteps = 0;        ///< lines played
    int mExpectations = 0; ///< of these, expectations looked at
    /// "file:line: reason", for what was not as expected or could not be done; playing goes on
    /// after an expectation that failed and ends at a step that cannot be done.
    std::vector<std::string> mFailures;
};

/// Scripts are checked as a whole before the first step: one with mistakes plays nothing.
class QLX_API QLX_PlayScript {
  public:
    QLX_PlayScript() = delete;
    /// Plays a script's text; the name stands in failures and gives pictures their folder.
    static QLX_PlayResult PlayText(QLX_TestDriver& driver, std::string_view text,
                                   const std::string& name);
    /// Throws std::runtime_error "path: reason" when the file cannot be read.
    static QLX_PlayResult PlayFile(QLX_TestDriver& driver, const std::string& path);
    /// The mistakes of a script, as PlayText would report them.
    [[nodiscard]] static std::vector<std::string> Check(std::string_view text,
                                                        const std::string& name);
};

/// Writes what the user does in any window into a script, from construction to destruction. One at
/// a time. The file is complete up to the last event at any moment.
class QLX_API QLX_PlayRecorder {
  public:
    /// Throws std::runtime_error "path: reason" when the file cannot be made.
    explicit QLX_PlayRecorder(const std::string& path);
    ~QLX_PlayRecorder();
    QLX_PlayRecorder(const QLX_PlayRecorder&) = delete;
    QLX_PlayRecorder& operator=(const QLX_PlayRecorder&) = delete;

  private:
    class Listener;
    std::unique_ptr<Listener> mListener;
};
