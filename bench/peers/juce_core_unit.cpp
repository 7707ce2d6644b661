// The part of JUCE that its rectangle lists need, built into the benchmark.
#include <juce_core/juce_core.cpp>
