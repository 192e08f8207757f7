// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/VirtualRowLayout.h"

#include <algorithm>

namespace Vesko {

void VirtualRowLayout::setHeights(std::vector<int> heights)
{
    m_heights = std::move(heights);
    m_tops.resize(m_heights.size() + 1);
    m_tops[0] = 0;
    computeTopsFrom(0);
}

void VirtualRowLayout::replaceHeights(int first, int removed, std::vector<int> heights)
{
    const auto at = m_heights.begin() + first;
    const size_t common = std::min(size_t(removed), heights.size());
    std::copy_n(heights.cbegin(), common, at);
    if (size_t(removed) > common)
        m_heights.erase(at + qsizetype(common), at + removed);
    else
        m_heights.insert(
            at + qsizetype(common), heights.cbegin() + qsizetype(common), heights.cend());
    m_tops.resize(m_heights.size() + 1);
    computeTopsFrom(size_t(first));
}

bool VirtualRowLayout::setHeight(int index, int height)
{
    if (index < 0 || index >= count() || m_heights[size_t(index)] == height)
        return false;
    m_heights[size_t(index)] = height;
    computeTopsFrom(size_t(index));
    return true;
}

int VirtualRowLayout::indexAt(int y) const
{
    if (m_heights.empty())
        return -1;
    // The last top that is not below y.
    const auto found = std::upper_bound(m_tops.cbegin(), m_tops.cend() - 1, y);
    return std::clamp(int(found - m_tops.cbegin()) - 1, 0, count() - 1);
}

void VirtualRowLayout::computeTopsFrom(size_t index)
{
    for (size_t i = index; i < m_heights.size(); ++i)
        m_tops[i + 1] = m_tops[i] + m_heights[i];
}

} // namespace Vesko
