// JUCE's rectangle list behind plain functions, so that its headers stay in one file.
#pragma once

#include <memory>
#include <vector>

#include "newfilelibs/cmn/cmn_rect.h"

class JuceRegion {
  public:
    JuceRegion();
    explicit JuceRegion(const std::vector<Cmn_Rect<int>>& rects);
    JuceRegion(const JuceRegion&);
    JuceRegion& operator=(const JuceRegion&);
    ~JuceRegion();

    void Add(const Cmn_Rect<int>& rect);
    void Add(const JuceRegion& other);
    void Subtract(const JuceRegion& other);
    void Intersect(const JuceRegion& other);
    [[nodiscard]] bool ContainsPoint(int x, int y) const;
    [[nodiscard]] int Count() const;

  private:
    struct List;
    std::unique_ptr<List> mList;
};
