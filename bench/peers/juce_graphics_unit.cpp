// JUCE's renderer, built into the benchmark as one unit with what it needs.
#include <juce_events/juce_events.cpp>
#include <juce_graphics/juce_graphics.cpp>
