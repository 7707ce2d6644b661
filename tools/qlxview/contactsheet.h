// Contact sheets: many pictures of one window on one, each under its caption.
#pragma once

#include <string>
#include <vector>

#include "qlx/imaging/qlx_image.h"

struct SheetCell {
    QLX_Image::Ptr mPicture; ///< counted
    std::string mCaption;
    std::vector<Cmn_Rect<int>> mMarks; ///< pixels of the picture, framed in red
};

/// Rows of the given number of cells; rows are as high as their highest picture, columns as wide as
/// their widest. Pictures wider than widthLimit (0: no limit) are made smaller. Throws
/// std::runtime_error when the sheet would be larger than pictures can be.
[[nodiscard]] QLX_Image::Ptr MakeContactSheet(const std::vector<SheetCell>& cells, int columns,
                                              int widthLimit);

/// The picture with its marks drawn in.
[[nodiscard]] QLX_Image::Ptr WithMarks(const SheetCell& cell);

/// Writes a PNG. A file that is there is kept, unless force is set, and std::runtime_error thrown.
void SavePicture(const QLX_Image::Ptr& picture, const std::string& path, bool force);
/// Throws as SavePicture would, before the work is done.
void CheckMayWrite(const std::string& path, bool force);
