#pragma once
// The toolbar pictures, addressed by index like an image list. Index 6 is the
// pause picture and 15 the resume picture; the others are listed in
// ImageList.cpp.

#include <QIcon>
#include <QString>

namespace mirabend {

class ImageList {
public:
    static constexpr int kPause = 6;
    static constexpr int kResume = 15;

    // The picture at `index`, or a null icon for an unknown index.
    static QIcon icon(int index);
    // The picture's name in the resources (":/icons/<name>.svg").
    static QString name(int index);
};

} // namespace mirabend
