// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vertical geometry of a list of rows of known or estimated heights:
// where each row begins, the total height, and which row lies at a given
// height. A change of one row's height moves only the rows below it.

#pragma once

#include <QtGlobal>

#include <vector>

namespace Vesko {

class VirtualRowLayout
{
public:
    //! Replaces all rows by rows of \a heights.
    void setHeights(std::vector<int> heights);
    //! Replaces \a removed rows from \a first by rows of \a heights.
    void replaceHeights(int first, int removed, std::vector<int> heights);
    //! Changes one row's height; returns whether it differed.
    bool setHeight(int index, int height);

    int count() const { return int(m_heights.size()); }
    int height(int index) const { return m_heights[size_t(index)]; }
    //! The top of the row \a index; the total height for \a index == count().
    int top(int index) const { return m_tops[size_t(index)]; }
    int bottom(int index) const { return m_tops[size_t(index) + 1]; }
    int totalHeight() const { return m_tops.back(); }
    //! The row that holds the height \a y, clamped to the first and last
    //! row; -1 when there are none.
    int indexAt(int y) const;

private:
    void computeTopsFrom(size_t index);

    std::vector<int> m_heights;
    std::vector<int> m_tops = {0};
};

} // namespace Vesko
