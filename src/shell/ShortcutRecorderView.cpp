// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/ShortcutRecorderView.h"

#include "capture/HotKeyCenter.h"
#include "shell/SettingsForm.h"
#include "shell/ShortcutRecording.h"
#include "shell/Theme.h"

#include <QEnterEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace Vesko {

namespace {

// Keys that only modify: pressing one alone records nothing yet.
bool isModifierKey(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
        return true;
    default:
        return false;
    }
}

// The platform key code of a press. Without one (a platform that gives no
// native codes), the three keys the recorder treats apart are still known.
quint16 keyCodeOf(const QKeyEvent *event)
{
    if (event->nativeScanCode() != 0)
        return quint16(event->nativeScanCode());
    switch (event->key()) {
    case Qt::Key_Escape:
        return RecorderKeyCode::Escape;
    case Qt::Key_Backspace:
        return RecorderKeyCode::Backspace;
    case Qt::Key_Delete:
        return RecorderKeyCode::Delete;
    default:
        return 0;
    }
}

} // namespace

ShortcutRecorderView::ShortcutRecorderView(
    HotKeyAction action, HotKeyCenter &hotKeys, const KeyLayout *layout, QWidget *parent)
    : QWidget(parent)
    , m_action(action)
    , m_hotKeys(hotKeys)
    , m_layout(layout)
    , m_button(new QPushButton(this))
    , m_clear(new QToolButton(this))
    , m_warningLine(makeFootnote(QString(), this))
    , m_refusalLine(makeFootnote(QString(), this))
{
    QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    mono.setPixelSize(12);
    m_button->setFont(mono);
    m_button->setMinimumWidth(buttonWidth);
    m_button->setAccessibleName(tr("%1 shortcut").arg(title(action)));
    m_button->installEventFilter(this);
    connect(m_button, &QPushButton::clicked, this, [this] {
        if (!m_desktopOwned)
            toggleRecording();
        else if (m_openDesktopSettings)
            m_openDesktopSettings();
    });

    m_clear->setIcon(symbolIcon(
        QStringLiteral("xmark.circle.fill"), palette().color(QPalette::PlaceholderText), 14));
    m_clear->setAutoRaise(true);
    m_clear->setToolTip(tr("Remove this shortcut"));
    m_clear->setAccessibleName(tr("Remove this shortcut"));
    m_clear->setFocusPolicy(Qt::NoFocus);
    connect(m_clear, &QToolButton::clicked, this, [this] {
        setWarning(QString());
        m_hotKeys.clearCombo(m_action);
    });

    for (QLabel *line : {m_warningLine, m_refusalLine}) {
        QFont font = line->font();
        font.setPixelSize(10);
        line->setFont(font);
        line->setAlignment(Qt::AlignRight);
        line->setWordWrap(false);
    }

    auto *controls = new QHBoxLayout;
    controls->setContentsMargins(0, 0, 0, 0);
    controls->setSpacing(2);
    controls->addStretch(1);
    controls->addWidget(m_clear);
    controls->addWidget(m_button);
    auto *layoutBox = new QVBoxLayout(this);
    layoutBox->setContentsMargins(0, 0, 0, 0);
    layoutBox->setSpacing(2);
    layoutBox->addLayout(controls);
    layoutBox->addWidget(m_warningLine);
    layoutBox->addWidget(m_refusalLine);

    connect(&m_hotKeys, &HotKeyCenter::combosChanged, this, &ShortcutRecorderView::refresh);
    connect(&m_hotKeys, &HotKeyCenter::registrationsChanged, this, &ShortcutRecorderView::refresh);
    // The key names follow the desktop's layout as the user switches it.
    if (m_layout)
        connect(m_layout, &KeyLayout::changed, this, &ShortcutRecorderView::refresh);
    refresh();
}

QString ShortcutRecorderView::buttonText() const
{
    if (m_isRecording)
        return tr("Press keys…");
    if (m_desktopOwned) {
        const QString trigger = m_hotKeys.desktopTrigger(m_action);
        return trigger.isEmpty() ? tr("Not set") : trigger;
    }
    if (const std::optional<KeyCombo> combo = m_hotKeys.combo(m_action))
        return displayString(*combo, m_layout);
    return tr("None");
}

QString ShortcutRecorderView::refusalText() const
{
    if (!m_captureAvailable || m_desktopOwned || !m_hotKeys.isRefused(m_action))
        return {};
    // Refused by Vesko itself, because another of its actions holds the keys.
    if (const std::optional<HotKeyAction> holder = m_hotKeys.refusingAction(m_action))
        return tr("Already used by “%1”.").arg(title(*holder));
    return tr("Taken by another application");
}

void ShortcutRecorderView::setCaptureAvailable(bool available)
{
    if (available == m_captureAvailable)
        return;
    m_captureAvailable = available;
    refresh();
}

void ShortcutRecorderView::setDesktopOwned(bool owned, std::function<void()> openSettings)
{
    m_openDesktopSettings = std::move(openSettings);
    m_desktopOwned = owned;
    if (owned)
        setRecording(false);
    m_button->setToolTip(owned
            ? (m_openDesktopSettings ? tr("Your desktop keeps this shortcut: click to change "
                                          "it in the desktop's settings.")
                                     : tr("Your desktop keeps this shortcut: change it in "
                                          "the desktop's settings."))
            : QString());
    refresh();
}

void ShortcutRecorderView::toggleRecording()
{
    setWarning(QString());
    setRecording(!m_isRecording);
}

void ShortcutRecorderView::handleKey(quint16 keyCode, quint64 modifiers)
{
    setRecording(false);
    const RecordedKey result = applyRecordedKey(m_hotKeys, m_action, keyCode, modifiers);
    if (result.outcome == RecordedKey::Outcome::Refused)
        setWarning(result.warning);
    else if (result.outcome != RecordedKey::Outcome::Cancelled)
        setWarning(QString());
}

void ShortcutRecorderView::setRecording(bool recording)
{
    if (recording == m_isRecording)
        return;
    m_isRecording = recording;
    if (recording) {
        m_button->setFocus(Qt::OtherFocusReason);
        // Every key comes here while recording, also those the desktop or
        // this program would take as a shortcut.
        m_button->grabKeyboard();
    } else {
        m_button->releaseKeyboard();
    }
    refresh();
    Q_EMIT recordingChanged();
}

void ShortcutRecorderView::setWarning(const QString &warning)
{
    if (warning == m_warning)
        return;
    m_warning = warning;
    refresh();
    Q_EMIT warningChanged();
}

void ShortcutRecorderView::refresh()
{
    m_button->setText(buttonText());
    m_button->setDown(m_isRecording);
    m_warningLine->setText(m_warning);
    m_warningLine->setVisible(!m_warning.isEmpty());
    const QString refusal = refusalText();
    m_refusalLine->setText(refusal);
    m_refusalLine->setVisible(!refusal.isEmpty());
    // A screen reader reads the lines under the control with it.
    QStringList description;
    if (!m_warning.isEmpty())
        description.append(m_warning);
    if (!refusal.isEmpty())
        description.append(refusal);
    m_button->setAccessibleDescription(description.join(u' '));
    const bool showsClear = (m_isHovering || m_button->hasFocus()) && !m_isRecording
        && !m_desktopOwned && m_hotKeys.combo(m_action).has_value();
    // The clear button keeps its room so that the row does not shift under the pointer.
    QSizePolicy policy = m_clear->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_clear->setSizePolicy(policy);
    m_clear->setVisible(showsClear);
}

bool ShortcutRecorderView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_button)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (m_isRecording) {
            event->accept();
            return true;
        }
        break;
    case QEvent::KeyPress:
        if (m_isRecording) {
            auto *key = static_cast<QKeyEvent *>(event);
            if (!isModifierKey(key->key()))
                handleKey(keyCodeOf(key), modifierFlags(key->modifiers()));
            return true;
        }
        break;
    case QEvent::KeyRelease:
        if (m_isRecording)
            return true;
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        if (event->type() == QEvent::FocusOut && m_isRecording
            && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason)
            setRecording(false);
        refresh();
        break;
    case QEvent::Hide:
        setRecording(false);
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void ShortcutRecorderView::enterEvent(QEnterEvent *event)
{
    m_isHovering = true;
    refresh();
    QWidget::enterEvent(event);
}

void ShortcutRecorderView::leaveEvent(QEvent *event)
{
    m_isHovering = false;
    refresh();
    QWidget::leaveEvent(event);
}

} // namespace Vesko
