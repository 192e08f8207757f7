// SPDX-License-Identifier: GPL-3.0-or-later
//
// Turns the drag of a collapsed section header into a new section order.
// The list records where its section headers lie; while a header is dragged
// the section before which it would land is worked out from the middle of
// the dragged header and the middles of the others, and at the end of the
// drag the section moves there.

#pragma once

#include <QHash>
#include <QList>
#include <QRectF>
#include <QUuid>

#include <optional>

namespace Vesko {

class Store;

class SectionReorder
{
public:
    //! The section before which a header dragged to \a y lands, from the
    //! headers at \a frames (without the dragged one): the first whose
    //! middle lies below \a y; past them all, the section that follows the
    //! last of them in \a sectionOrder, which may be the dragged one; none
    //! for the end.
    static std::optional<QUuid> targetFor(const QHash<QUuid, QRectF> &frames,
        const QUuid &draggedID, double y, const QList<QUuid> &sectionOrder);

    //! Where the section headers lie, in the list's coordinates.
    void setSectionFrames(const QHash<QUuid, QRectF> &frames) { m_frames = frames; }
    const QHash<QUuid, QRectF> &sectionFrames() const { return m_frames; }

    //! The header of \a sectionID moved by \a translation (down is positive)
    //! since the drag began; the first call begins the drag. Returns whether
    //! the target changed.
    bool changed(const Store &store, const QUuid &sectionID, double translation);
    //! The drag ended at \a translation: the section moves before the target,
    //! or to the end without one.
    void ended(Store &store, const QUuid &sectionID, double translation);
    void cancelled();

    std::optional<QUuid> sourceID() const { return m_sourceID; }
    std::optional<double> startY() const { return m_startY; }
    std::optional<QUuid> targetID() const { return m_targetID; }

private:
    QHash<QUuid, QRectF> m_frames;
    std::optional<QUuid> m_sourceID;
    std::optional<double> m_startY;
    std::optional<QUuid> m_targetID;
};

} // namespace Vesko
