// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/Preferences.h"

#include "library/LibraryFile.h"
#include "platform/SettingsFile.h"

namespace Vesko {

namespace {

// Keys and defaults, in one place.
namespace Key {
constexpr auto appearance = "appearance";
constexpr auto panelEdge = "panelEdge";
constexpr auto panelWidth = "panelWidth";
constexpr auto panelHeight = "panelHeight";
constexpr auto panelInset = "panelInset";
constexpr auto doubleShiftEnabled = "doubleShiftEnabled";
constexpr auto doubleShiftInterval = "doubleShiftInterval";
constexpr auto showPanelOnCapture = "showPanelOnCapture";
constexpr auto groupCapturesBySource = "groupCapturesBySource";
constexpr auto newestFirst = "newestFirst";
constexpr auto showCompleted = "showCompleted";
constexpr auto moveDoneToBottom = "moveDoneToBottom";
constexpr auto listStyle = "listStyle";
constexpr auto copyIncludesMarkdown = "copyIncludesMarkdown";
constexpr auto joinsAllSpaces = "joinsAllSpaces";
constexpr auto pinOnTop = "pinOnTop";
constexpr auto showsInMenuBar = "showsInMenuBar";
constexpr auto showsInDock = "showsInDock";
constexpr auto libraryPath = "libraryPath";
constexpr auto panelOriginX = "panelOriginX";
constexpr auto panelOriginY = "panelOriginY";
constexpr auto hasStoredPanelFrame = "hasStoredPanelFrame";
} // namespace Key

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

// A stored value of the wrong type reads as the type's zero.
bool readBool(const QSettings &settings, const char *name, bool fallback)
{
    const QVariant value = settings.value(key(name));
    if (!value.isValid())
        return fallback;
    const QString text = value.toString().trimmed().toLower();
    if (text == u"true" || text == u"1")
        return true;
    return false;
}

double readDouble(const QSettings &settings, const char *name, double fallback)
{
    const QVariant value = settings.value(key(name));
    if (!value.isValid())
        return fallback;
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok ? number : 0.0;
}

QString readString(const QSettings &settings, const char *name, const QString &fallback)
{
    const QVariant value = settings.value(key(name));
    return value.isValid() ? value.toString() : fallback;
}

} // namespace

QString rawValue(AppAppearance value)
{
    switch (value) {
    case AppAppearance::Light:
        return QStringLiteral("light");
    case AppAppearance::Dark:
        return QStringLiteral("dark");
    case AppAppearance::System:
        break;
    }
    return QStringLiteral("system");
}

QString rawValue(PanelEdge value)
{
    switch (value) {
    case PanelEdge::Left:
        return QStringLiteral("left");
    case PanelEdge::Center:
        return QStringLiteral("center");
    case PanelEdge::Right:
        break;
    }
    return QStringLiteral("right");
}

QString rawValue(ListStyle value)
{
    switch (value) {
    case ListStyle::Dash:
        return QStringLiteral("dash");
    case ListStyle::Plain:
        return QStringLiteral("plain");
    case ListStyle::Numbered:
        break;
    }
    return QStringLiteral("numbered");
}

AppAppearance appAppearanceFromRawValue(const QString &raw)
{
    if (raw == u"light")
        return AppAppearance::Light;
    if (raw == u"dark")
        return AppAppearance::Dark;
    return AppAppearance::System;
}

PanelEdge panelEdgeFromRawValue(const QString &raw)
{
    if (raw == u"left")
        return PanelEdge::Left;
    if (raw == u"center")
        return PanelEdge::Center;
    return PanelEdge::Right;
}

ListStyle listStyleFromRawValue(const QString &raw)
{
    if (raw == u"dash")
        return ListStyle::Dash;
    if (raw == u"plain")
        return ListStyle::Plain;
    return ListStyle::Numbered;
}

std::unique_ptr<QSettings> Preferences::openSettings()
{
    SettingsWriter::shared().flush();
    return openSettingsFile();
}

Preferences::Preferences(QObject *parent)
    : QObject(parent)
{
    const std::unique_ptr<QSettings> settings = openSettings();
    const QSettings &s = *settings;
    m_appearance
        = appAppearanceFromRawValue(readString(s, Key::appearance, QStringLiteral("system")));
    m_panelEdge = panelEdgeFromRawValue(readString(s, Key::panelEdge, QStringLiteral("right")));
    m_panelWidth = readDouble(s, Key::panelWidth, 340);
    m_panelHeight = readDouble(s, Key::panelHeight, 560);
    m_panelInset = readDouble(s, Key::panelInset, 24);
    m_doubleShiftEnabled = readBool(s, Key::doubleShiftEnabled, true);
    m_doubleShiftInterval = readDouble(s, Key::doubleShiftInterval, 0.4);
    m_showPanelOnCapture = readBool(s, Key::showPanelOnCapture, true);
    m_groupCapturesBySource = readBool(s, Key::groupCapturesBySource, true);
    m_newestFirst = readBool(s, Key::newestFirst, false);
    m_showCompleted = readBool(s, Key::showCompleted, true);
    m_moveDoneToBottom = readBool(s, Key::moveDoneToBottom, false);
    m_listStyle = listStyleFromRawValue(readString(s, Key::listStyle, QStringLiteral("numbered")));
    m_copyIncludesMarkdown = readBool(s, Key::copyIncludesMarkdown, true);
    m_joinsAllSpaces = readBool(s, Key::joinsAllSpaces, true);
    m_pinOnTop = readBool(s, Key::pinOnTop, false);
    m_showsInMenuBar = readBool(s, Key::showsInMenuBar, true);
    m_showsInDock = readBool(s, Key::showsInDock, false);
    // Without a stored path the default stands in, and is not written back.
    m_defaultLibraryURL = defaultLibraryURL();
    const QVariant path = s.value(key(Key::libraryPath));
    m_libraryPath = path.isValid() ? path.toString() : m_defaultLibraryURL;
    m_panelOriginX = readDouble(s, Key::panelOriginX, 0);
    m_panelOriginY = readDouble(s, Key::panelOriginY, 0);
    m_hasStoredPanelFrame = readBool(s, Key::hasStoredPanelFrame, false);
}

Preferences::~Preferences()
{
    flush();
}

void Preferences::write(const char *name, const QVariant &value)
{
    SettingsWriter::shared().setValue(key(name), value);
}

void Preferences::flush()
{
    SettingsWriter::shared().flush();
}

Preferences &Preferences::shared()
{
    static Preferences *const preferences = new Preferences;
    return *preferences;
}

template<typename T, typename Stored>
void Preferences::assign(T &field, const T &value, const char *name, const Stored &stored,
    void (Preferences::*changed)())
{
    const bool differs = !(field == value);
    field = value;
    write(name, stored);
    if (differs)
        Q_EMIT(this->*changed)();
}

void Preferences::setAppearance(AppAppearance value)
{
    assign(m_appearance, value, Key::appearance, rawValue(value), &Preferences::appearanceChanged);
    Q_EMIT appearanceAssigned(value);
}

void Preferences::setPanelEdge(PanelEdge value)
{
    assign(m_panelEdge, value, Key::panelEdge, rawValue(value), &Preferences::panelEdgeChanged);
}

void Preferences::setPanelWidth(double value)
{
    assign(m_panelWidth, value, Key::panelWidth, value, &Preferences::panelWidthChanged);
}

void Preferences::setPanelHeight(double value)
{
    assign(m_panelHeight, value, Key::panelHeight, value, &Preferences::panelHeightChanged);
}

void Preferences::setPanelInset(double value)
{
    assign(m_panelInset, value, Key::panelInset, value, &Preferences::panelInsetChanged);
}

void Preferences::setDoubleShiftEnabled(bool value)
{
    assign(m_doubleShiftEnabled, value, Key::doubleShiftEnabled, value,
        &Preferences::doubleShiftEnabledChanged);
}

void Preferences::setDoubleShiftInterval(double value)
{
    assign(m_doubleShiftInterval, value, Key::doubleShiftInterval, value,
        &Preferences::doubleShiftIntervalChanged);
}

void Preferences::setShowPanelOnCapture(bool value)
{
    assign(m_showPanelOnCapture, value, Key::showPanelOnCapture, value,
        &Preferences::showPanelOnCaptureChanged);
}

void Preferences::setGroupCapturesBySource(bool value)
{
    assign(m_groupCapturesBySource, value, Key::groupCapturesBySource, value,
        &Preferences::groupCapturesBySourceChanged);
}

void Preferences::setNewestFirst(bool value)
{
    assign(m_newestFirst, value, Key::newestFirst, value, &Preferences::newestFirstChanged);
    Q_EMIT listOptionsAssigned();
}

void Preferences::setShowCompleted(bool value)
{
    assign(m_showCompleted, value, Key::showCompleted, value, &Preferences::showCompletedChanged);
    Q_EMIT listOptionsAssigned();
}

void Preferences::setMoveDoneToBottom(bool value)
{
    assign(m_moveDoneToBottom, value, Key::moveDoneToBottom, value,
        &Preferences::moveDoneToBottomChanged);
    Q_EMIT listOptionsAssigned();
}

void Preferences::setListStyle(ListStyle value)
{
    assign(m_listStyle, value, Key::listStyle, rawValue(value), &Preferences::listStyleChanged);
}

void Preferences::setCopyIncludesMarkdown(bool value)
{
    assign(m_copyIncludesMarkdown, value, Key::copyIncludesMarkdown, value,
        &Preferences::copyIncludesMarkdownChanged);
}

void Preferences::setJoinsAllSpaces(bool value)
{
    assign(
        m_joinsAllSpaces, value, Key::joinsAllSpaces, value, &Preferences::joinsAllSpacesChanged);
}

void Preferences::setPinOnTop(bool value)
{
    assign(m_pinOnTop, value, Key::pinOnTop, value, &Preferences::pinOnTopChanged);
}

void Preferences::setShowsInMenuBar(bool value)
{
    assign(
        m_showsInMenuBar, value, Key::showsInMenuBar, value, &Preferences::showsInMenuBarChanged);
}

void Preferences::setShowsInDock(bool value)
{
    assign(m_showsInDock, value, Key::showsInDock, value, &Preferences::showsInDockChanged);
    Q_EMIT showsInDockAssigned(value);
}

void Preferences::setLibraryPath(const QString &value)
{
    assign(m_libraryPath, value, Key::libraryPath, value, &Preferences::libraryPathChanged);
}

void Preferences::setStoredPanelFrame(const QRectF &frame)
{
    m_panelOriginX = frame.x();
    m_panelOriginY = frame.y();
    write(Key::panelOriginX, frame.x());
    write(Key::panelOriginY, frame.y());
    setPanelWidth(frame.width());
    setPanelHeight(frame.height());
    m_hasStoredPanelFrame = true;
    write(Key::hasStoredPanelFrame, true);
}

std::optional<QRectF> Preferences::storedPanelFrame() const
{
    if (!m_hasStoredPanelFrame)
        return std::nullopt;
    return QRectF(m_panelOriginX, m_panelOriginY, m_panelWidth, m_panelHeight);
}

void Preferences::clearStoredPanelFrame()
{
    m_hasStoredPanelFrame = false;
    write(Key::hasStoredPanelFrame, false);
}

} // namespace Vesko
