// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/SectionReorder.h"

#include "store/Store.h"

#include <algorithm>

namespace Vesko {

namespace {

QList<QUuid> sectionOrderOf(const Store &store)
{
    QList<QUuid> order;
    const Project project = store.activeProject();
    order.reserve(project.sections.size());
    for (const NoteSection &section : project.sections)
        order.append(section.id);
    return order;
}

} // namespace

std::optional<QUuid> SectionReorder::targetFor(const QHash<QUuid, QRectF> &frames,
    const QUuid &draggedID, double y, const QList<QUuid> &sectionOrder)
{
    QList<std::pair<QUuid, QRectF>> others;
    others.reserve(frames.size());
    for (auto it = frames.cbegin(); it != frames.cend(); ++it) {
        if (it.key() != draggedID)
            others.append({it.key(), it.value()});
    }
    if (others.isEmpty())
        return std::nullopt;
    std::stable_sort(others.begin(), others.end(),
        [](const auto &a, const auto &b) { return a.second.top() < b.second.top(); });
    for (const auto &[id, frame] : others) {
        if (frame.center().y() > y)
            return id;
    }
    const qsizetype last = sectionOrder.indexOf(others.last().first);
    if (last >= 0 && last + 1 < sectionOrder.size())
        return sectionOrder.at(last + 1);
    return std::nullopt;
}

bool SectionReorder::changed(const Store &store, const QUuid &sectionID, double translation)
{
    if (m_sourceID != sectionID) {
        m_sourceID = sectionID;
        const auto frame = m_frames.constFind(sectionID);
        m_startY
            = frame != m_frames.cend() ? std::optional<double>(frame->center().y()) : std::nullopt;
    }
    if (!m_startY)
        return false;
    const std::optional<QUuid> target
        = targetFor(m_frames, sectionID, *m_startY + translation, sectionOrderOf(store));
    if (target == m_targetID)
        return false;
    m_targetID = target;
    return true;
}

void SectionReorder::ended(Store &store, const QUuid &sectionID, double translation)
{
    changed(store, sectionID, translation);
    const std::optional<QUuid> target = m_targetID;
    cancelled();
    store.moveSection(sectionID, target);
}

void SectionReorder::cancelled()
{
    m_sourceID.reset();
    m_startY.reset();
    m_targetID.reset();
}

} // namespace Vesko
