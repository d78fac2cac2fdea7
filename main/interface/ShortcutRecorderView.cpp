#include "main/interface/ShortcutRecorderView.hpp"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include "main/interface/Style.hpp"

namespace quorvel {
namespace {

constexpr std::uint32_t escape = 53;

std::uint32_t cocoaFlags(Qt::KeyboardModifiers modifiers) {
    std::uint32_t flags = 0;
    if (modifiers.testFlag(Qt::ControlModifier)) flags |= 0x40000;
    if (modifiers.testFlag(Qt::AltModifier)) flags |= 0x80000;
    if (modifiers.testFlag(Qt::ShiftModifier)) flags |= 0x20000;
    if (modifiers.testFlag(Qt::MetaModifier)) flags |= 0x100000;
    return flags;
}

/// Keys that only change what others mean.
bool isModifierKey(int key) {
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
        case Qt::Key_Mode_switch:
            return true;
        default:
            return false;
    }
}

bool isReturn(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

ShortcutRecorderView::ShortcutRecorderView(HotKeys& keys) : keys(keys) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    tellName();
    // How assistive technology presses a button.
    connect(this, &QAbstractButton::clicked, this, [this] { startRecording(); });
}

ShortcutRecorderView::~ShortcutRecorderView() {
    if (recording) releaseKeyboard();
}

void ShortcutRecorderView::setDisplayText(const QString& text) {
    shownText = text;
    tellName();
    update();
}

void ShortcutRecorderView::startRecording() {
    if (recording || !isVisible()) return;
    setFocus(Qt::OtherFocusReason);
    recording = true;
    returnStarts = false;
    endingKey.reset();
    grabKeyboard();
    // A click beside all controls does not move the focus.
    qApp->installEventFilter(this);
    tellName();
    update();
}

void ShortcutRecorderView::endRecording() {
    if (!recording) return;
    recording = false;
    qApp->removeEventFilter(this);
    releaseKeyboard();
    tellName();
    update();
}

bool ShortcutRecorderView::event(QEvent* event) {
    // Before Tab can move the focus or a menu command take its keys.
    const bool isPress = event->type() == QEvent::KeyPress;
    if (isPress || event->type() == QEvent::ShortcutOverride) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (recording || (key.isAutoRepeat() && endingKey == key.nativeScanCode())) {
            event->accept();
            if (isPress && recording) record(key);
            return true;
        }
    } else if (event->type() == QEvent::KeyRelease) {
        if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) endingKey.reset();
    }
    return QAbstractButton::event(event);
}

bool ShortcutRecorderView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress && watched != this && watched->isWidgetType()) {
        endRecording();
    }
    return false;
}

void ShortcutRecorderView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) startRecording();
}

void ShortcutRecorderView::keyPressEvent(QKeyEvent* event) {
    const bool starts = event->key() == Qt::Key_Space || (returnStarts && isReturn(event->key()));
    const bool isPlain = cocoaFlags(event->modifiers()) == 0;
    if (starts && isPlain && !event->isAutoRepeat()) {
        startRecording();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void ShortcutRecorderView::record(const QKeyEvent& event) {
    if (event.isAutoRepeat() || isModifierKey(event.key())) return;
    const std::uint32_t flags = cocoaFlags(event.modifiers());
    const auto code = keys.virtualKeyCode(event.nativeScanCode());
    // Some have it in another place.
    const bool isEscape = code ? *code == escape : event.key() == Qt::Key_Escape;
    const ShortcutCapture capture = [&] {
        if (isEscape && flags == 0) return ShortcutCapture::cancelled();
        if (const auto spec = code ? HotKeySpec::from(*code, flags) : std::nullopt) {
            return ShortcutCapture::captured(*spec);
        }
        return flags != 0 ? ShortcutCapture::unsupportedKey() : ShortcutCapture::needsModifier();
    }();
    endingKey = event.nativeScanCode();
    endRecording();
    // What it does may be the end of this view.
    if (const auto act = onCapture) act(capture);
}

void ShortcutRecorderView::focusInEvent(QFocusEvent* event) {
    returnStarts = event->reason() == Qt::TabFocusReason ||
                   event->reason() == Qt::BacktabFocusReason ||
                   event->reason() == Qt::ShortcutFocusReason;
    QAbstractButton::focusInEvent(event);
    update();
}

void ShortcutRecorderView::focusOutEvent(QFocusEvent* event) {
    endRecording();
    endingKey.reset();
    QAbstractButton::focusOutEvent(event);
    update();
}

void ShortcutRecorderView::hideEvent(QHideEvent* event) {
    endRecording();
    QAbstractButton::hideEvent(event);
}

void ShortcutRecorderView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && !isActiveWindow()) endRecording();
    if (event->type() == QEvent::EnabledChange && !isEnabled()) endRecording();
    QAbstractButton::changeEvent(event);
}

void ShortcutRecorderView::tellName() {
    setAccessibleName(QStringLiteral("Shortcut: ") +
                      (recording ? QStringLiteral("Press the keys…") : shownText));
}

void ShortcutRecorderView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = Style::colour(Style::Colour::accent, palette());
    QColor fill = palette().color(QPalette::Base);
    QPen outline(Style::colour(Style::Colour::separator, palette()), 1);
    if (recording) {
        fill = accent;
        fill.setAlphaF(0.12F);
        outline = QPen(accent, 2);
    } else if (hasFocus()) {
        outline = QPen(accent, 1);
    }
    constexpr double radius = 6;
    painter.setBrush(fill);
    painter.setPen(outline);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
    if (hasFocus() && !recording) {
        QColor ring = accent;
        ring.setAlphaF(0.45F);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(ring, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
    }

    painter.setFont(recording ? Style::font(12) : Style::font(15, QFont::Medium));
    painter.setPen(
        Style::colour(recording ? Style::Colour::secondaryLabel : Style::Colour::label, palette()));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine,
                     recording ? QStringLiteral("Press the keys…") : shownText);
}

}  // namespace quorvel
