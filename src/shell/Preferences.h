// SPDX-License-Identifier: GPL-3.0-or-later
//
// The user's settings: every key with its type and default, held in memory
// for reading and written through to the settings file ($XDG_CONFIG_HOME/
// Vesko/Vesko.conf) on every assignment, by a worker thread, so that no
// assignment waits for the disk. A property's change signal fires only
// when its value really changes; the few side effects run on every assignment.

#pragma once

#include <QObject>
#include <QRectF>
#include <QSettings>

#include <optional>

namespace Vesko {


Q_NAMESPACE

enum class AppAppearance { System, Light, Dark };
Q_ENUM_NS(AppAppearance)

enum class PanelEdge { Left, Center, Right };
Q_ENUM_NS(PanelEdge)

enum class ListStyle { Numbered, Dash, Plain };
Q_ENUM_NS(ListStyle)

//! The stored forms of the enumerations, and their readings: an unknown or
//! empty string reads as the fallback (System, Right, Numbered).
QString rawValue(AppAppearance value);
QString rawValue(PanelEdge value);
QString rawValue(ListStyle value);
AppAppearance appAppearanceFromRawValue(const QString &raw);
PanelEdge panelEdgeFromRawValue(const QString &raw);
ListStyle listStyleFromRawValue(const QString &raw);

class Preferences : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Vesko::AppAppearance appearance READ appearance WRITE setAppearance NOTIFY
            appearanceChanged)
    Q_PROPERTY(Vesko::PanelEdge panelEdge READ panelEdge WRITE setPanelEdge NOTIFY panelEdgeChanged)
    Q_PROPERTY(double panelWidth READ panelWidth WRITE setPanelWidth NOTIFY panelWidthChanged)
    Q_PROPERTY(double panelHeight READ panelHeight WRITE setPanelHeight NOTIFY panelHeightChanged)
    Q_PROPERTY(double panelInset READ panelInset WRITE setPanelInset NOTIFY panelInsetChanged)
    Q_PROPERTY(bool doubleShiftEnabled READ doubleShiftEnabled WRITE setDoubleShiftEnabled NOTIFY
            doubleShiftEnabledChanged)
    Q_PROPERTY(double doubleShiftInterval READ doubleShiftInterval WRITE setDoubleShiftInterval
            NOTIFY doubleShiftIntervalChanged)
    Q_PROPERTY(bool showPanelOnCapture READ showPanelOnCapture WRITE setShowPanelOnCapture NOTIFY
            showPanelOnCaptureChanged)
    Q_PROPERTY(bool groupCapturesBySource READ groupCapturesBySource WRITE setGroupCapturesBySource
            NOTIFY groupCapturesBySourceChanged)
    Q_PROPERTY(bool newestFirst READ newestFirst WRITE setNewestFirst NOTIFY newestFirstChanged)
    Q_PROPERTY(
        bool showCompleted READ showCompleted WRITE setShowCompleted NOTIFY showCompletedChanged)
    Q_PROPERTY(bool moveDoneToBottom READ moveDoneToBottom WRITE setMoveDoneToBottom NOTIFY
            moveDoneToBottomChanged)
    Q_PROPERTY(Vesko::ListStyle listStyle READ listStyle WRITE setListStyle NOTIFY listStyleChanged)
    Q_PROPERTY(bool copyIncludesMarkdown READ copyIncludesMarkdown WRITE setCopyIncludesMarkdown
            NOTIFY copyIncludesMarkdownChanged)
    Q_PROPERTY(bool joinsAllSpaces READ joinsAllSpaces WRITE setJoinsAllSpaces NOTIFY
            joinsAllSpacesChanged)
    Q_PROPERTY(bool pinOnTop READ pinOnTop WRITE setPinOnTop NOTIFY pinOnTopChanged)
    Q_PROPERTY(bool showsInMenuBar READ showsInMenuBar WRITE setShowsInMenuBar NOTIFY
            showsInMenuBarChanged)
    Q_PROPERTY(bool showsInDock READ showsInDock WRITE setShowsInDock NOTIFY showsInDockChanged)
    Q_PROPERTY(QString libraryPath READ libraryPath WRITE setLibraryPath NOTIFY libraryPathChanged)

public:
    //! Reads every key from the settings file once.
    explicit Preferences(QObject *parent = nullptr);
    //! Waits for the values assigned to reach the file.
    ~Preferences() override;

    //! The one instance of the process, made on first use and never destroyed.
    static Preferences &shared();

    //! The settings file of the program, in INI format, once every value
    //! given to the settings writer so far is in it.
    static std::unique_ptr<QSettings> openSettings();

    AppAppearance appearance() const { return m_appearance; }
    PanelEdge panelEdge() const { return m_panelEdge; }
    double panelWidth() const { return m_panelWidth; }
    double panelHeight() const { return m_panelHeight; }
    double panelInset() const { return m_panelInset; }
    bool doubleShiftEnabled() const { return m_doubleShiftEnabled; }
    double doubleShiftInterval() const { return m_doubleShiftInterval; }
    bool showPanelOnCapture() const { return m_showPanelOnCapture; }
    bool groupCapturesBySource() const { return m_groupCapturesBySource; }
    bool newestFirst() const { return m_newestFirst; }
    bool showCompleted() const { return m_showCompleted; }
    bool moveDoneToBottom() const { return m_moveDoneToBottom; }
    ListStyle listStyle() const { return m_listStyle; }
    bool copyIncludesMarkdown() const { return m_copyIncludesMarkdown; }
    bool joinsAllSpaces() const { return m_joinsAllSpaces; }
    bool pinOnTop() const { return m_pinOnTop; }
    bool showsInMenuBar() const { return m_showsInMenuBar; }
    bool showsInDock() const { return m_showsInDock; }
    //! The stored path, or the default library path, which is never written back.
    QString libraryPath() const { return m_libraryPath; }
    //! The library file in use: libraryPath when it is not empty, else the
    //! default. Read from memory; the settings file is not looked at.
    QString libraryURL() const
    {
        return m_libraryPath.isEmpty() ? m_defaultLibraryURL : m_libraryPath;
    }

    void setAppearance(AppAppearance value);
    void setPanelEdge(PanelEdge value);
    void setPanelWidth(double value);
    void setPanelHeight(double value);
    void setPanelInset(double value);
    void setDoubleShiftEnabled(bool value);
    void setDoubleShiftInterval(double value);
    void setShowPanelOnCapture(bool value);
    void setGroupCapturesBySource(bool value);
    void setNewestFirst(bool value);
    void setShowCompleted(bool value);
    void setMoveDoneToBottom(bool value);
    void setListStyle(ListStyle value);
    void setCopyIncludesMarkdown(bool value);
    void setJoinsAllSpaces(bool value);
    void setPinOnTop(bool value);
    void setShowsInMenuBar(bool value);
    void setShowsInDock(bool value);
    void setLibraryPath(const QString &value);

    //! Remembers the panel's frame: its origin, and its size as panelWidth and panelHeight.
    void setStoredPanelFrame(const QRectF &frame);
    //! The remembered frame; nothing when none is valid.
    std::optional<QRectF> storedPanelFrame() const;
    //! Forgets the remembered frame; the origin keys stay where they are.
    void clearStoredPanelFrame();

    //! Blocks until every value assigned so far is in the settings file:
    //! for the end of the program, and for tests that read the file.
    void flush();

Q_SIGNALS:
    void appearanceChanged();
    void panelEdgeChanged();
    void panelWidthChanged();
    void panelHeightChanged();
    void panelInsetChanged();
    void doubleShiftEnabledChanged();
    void doubleShiftIntervalChanged();
    void showPanelOnCaptureChanged();
    void groupCapturesBySourceChanged();
    void newestFirstChanged();
    void showCompletedChanged();
    void moveDoneToBottomChanged();
    void listStyleChanged();
    void copyIncludesMarkdownChanged();
    void joinsAllSpacesChanged();
    void pinOnTopChanged();
    void showsInMenuBarChanged();
    void showsInDockChanged();
    void libraryPathChanged();

    //! Every assignment of appearance, equal or not: the shell applies it.
    void appearanceAssigned(Vesko::AppAppearance appearance);
    //! Every assignment of showsInDock, equal or not: the shell applies it at once.
    void showsInDockAssigned(bool showsInDock);
    //! Every assignment of newestFirst, showCompleted or moveDoneToBottom.
    void listOptionsAssigned();

private:
    template<typename T, typename Stored>
    void assign(T &field, const T &value, const char *key, const Stored &stored,
        void (Preferences::*changed)());

    void write(const char *name, const QVariant &value);

    AppAppearance m_appearance;
    PanelEdge m_panelEdge;
    double m_panelWidth;
    double m_panelHeight;
    double m_panelInset;
    bool m_doubleShiftEnabled;
    double m_doubleShiftInterval;
    bool m_showPanelOnCapture;
    bool m_groupCapturesBySource;
    bool m_newestFirst;
    bool m_showCompleted;
    bool m_moveDoneToBottom;
    ListStyle m_listStyle;
    bool m_copyIncludesMarkdown;
    bool m_joinsAllSpaces;
    bool m_pinOnTop;
    bool m_showsInMenuBar;
    bool m_showsInDock;
    QString m_libraryPath;
    QString m_defaultLibraryURL;
    double m_panelOriginX;
    double m_panelOriginY;
    bool m_hasStoredPanelFrame;
};

} // namespace Vesko
