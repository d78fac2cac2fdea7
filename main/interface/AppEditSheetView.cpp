#include <QFontMetrics>
#include <QGridLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "main/interface/AppEditSheet.hpp"

#include "main/interface/UserChoice.hpp"

// How the sheet is laid out.
namespace quorvel {
namespace {

constexpr int sheetWidth = 440;
constexpr int margin = 20;

/// A thin rounded frame, as of a picture of a display.
class FramedBox final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        constexpr double radius = 4;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Style::colour(Style::Colour::tertiaryLabel, palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }
};

template <class Layout>
Layout* row(int spacing) {
    auto* const layout = new Layout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

}  // namespace

void AppEditSheet::loadView() {
    setWindowTitle(title());
    setWindowFlags(Style::sheetFlags());
    setWindowModality(Qt::WindowModal);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setFont(Style::font(13));

    auto* const stack = new QVBoxLayout(this);
    stack->setContentsMargins(margin, margin, margin, margin);
    stack->setSpacing(14);
    stack->addLayout(header());
    stack->addLayout(settingsGrid());
    stack->addLayout(autoTuckRow());
    // Of a long name the middle may go, but not what is said about it.
    status = new WrappedLabel(2, 11, Style::Colour::red, QFont::Normal, Qt::ElideMiddle);
    status->setObjectName(QStringLiteral("status"));
    stack->addWidget(status);
    stack->addWidget(Style::separator());
    stack->addLayout(buttonRow());
    setFixedWidth(sheetWidth);
    fitHeight();
    // Not the recorder: nobody has asked for it yet.
    doneButton->setFocus();
}

void AppEditSheet::fitHeight() {
    layout()->activate();
    setFixedHeight(layout()->totalHeightForWidth(sheetWidth));
}

QLayout* AppEditSheet::header() {
    auto* const layout = row<QHBoxLayout>(8);
    icon = new QLabel;
    icon->setFixedSize(28, 28);
    layout->addWidget(icon);
    auto* const titleLabel =
        new WrappedLabel(1, 15, Style::Colour::label, QFont::DemiBold, Qt::ElideMiddle);
    titleLabel->setObjectName(QStringLiteral("title"));
    titleLabel->setText(title());
    layout->addWidget(titleLabel, 1);
    return layout;
}

QLayout* AppEditSheet::settingsGrid() {
    auto* const grid = new QGridLayout;
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(14);
    grid->setHorizontalSpacing(12);
    grid->setColumnStretch(1, 1);
    // A label is level with the first control of its row.
    const auto addRow = [grid](const QString& name, QLayout* content, int firstHeight) {
        const int at = grid->rowCount();
        QLabel* const label = Style::label(name, 13, Style::Colour::secondaryLabel);
        label->setMinimumHeight(firstHeight);
        grid->addWidget(label, at, 0,
                        Qt::AlignTrailing | (firstHeight > 0 ? Qt::AlignTop : Qt::AlignVCenter));
        grid->addLayout(content, at, 1, Qt::AlignLeading | Qt::AlignTop);
    };
    QLayout* const shortcut = shortcutRow();
    addRow(QStringLiteral("Shortcut"), shortcut, recorder->sizeHint().height());
    if (!displayRef.empty()) {
        addRow(QStringLiteral("Hot corner"), cornerRow(), 0);
        QLayout* const edge = edgeRow();
        addRow(QStringLiteral("Tuck edge"), edge, edgeState->sizeHint().height());
    }
    return grid;
}

QLayout* AppEditSheet::shortcutRow() {
    recorder = new ShortcutRecorderView(platform.hotKeys);
    recorder->setObjectName(QStringLiteral("recorder"));
    recorder->onCapture = [this](const ShortcutCapture& result) { capture(result); };
    auto* const field = row<QHBoxLayout>(10);
    field->addWidget(recorder);
    const QString hint = QStringLiteral("Click, then press the keys you want.");
    // On one line if there is room, else on two of about the same length.
    constexpr int besideRecorder = 165;
    const int onOneLine = QFontMetrics(Style::font(11)).horizontalAdvance(hint) + 2;
    field->addWidget(
        Style::caption(hint, onOneLine <= besideRecorder ? onOneLine : onOneLine * 3 / 5));
    auto* const layout = row<QVBoxLayout>(2);
    layout->addLayout(field);
    layout->addWidget(Style::caption(QStringLiteral("Works on every display.")));
    return layout;
}

QLayout* AppEditSheet::cornerRow() {
    cornerOff = new QRadioButton(QStringLiteral("Off"));
    cornerOff->setObjectName(QStringLiteral("cornerOff"));
    cornerOff->setAccessibleName(QStringLiteral("No hot corner"));
    cornerChoice.addButton(cornerOff);
    onChosen(*cornerOff, *this, [this] { cornerOffChosen(); });

    auto* const box = new FramedBox;
    auto* const grid = new QGridLayout(box);
    grid->setContentsMargins(8, 6, 8, 6);
    grid->setVerticalSpacing(2);
    grid->setHorizontalSpacing(10);
    for (std::size_t i = 0; i < cornerButtons.size(); ++i) {
        const HotZoneCorner corner = cornerGridOrder[i];
        auto* const button = new QRadioButton;
        const std::string_view name = rawValue(corner);
        button->setAccessibleName(
            QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())) +
            QStringLiteral(" corner"));
        cornerChoice.addButton(button);
        onChosen(*button, *this, [this, corner] { cornerButtonChanged(corner); });
        grid->addWidget(button, static_cast<int>(i / 2), static_cast<int>(i % 2));
        cornerButtons[i] = button;
    }

    auto* const layout = row<QHBoxLayout>(12);
    layout->addWidget(cornerOff, 0, Qt::AlignVCenter);
    layout->addWidget(box, 0, Qt::AlignVCenter);
    return layout;
}

QLayout* AppEditSheet::edgeRow() {
    edgeState = new SegmentedControl(QStringLiteral("Tuck edge"),
                                     {QStringLiteral("Off"), QStringLiteral("Left"),
                                      QStringLiteral("Right"), QStringLiteral("Bottom")});
    edgeState->setObjectName(QStringLiteral("edgeState"));
    edgeHalfControl = new SegmentedControl(
        QStringLiteral("Part of the edge"),
        {QStringLiteral("Whole"), QStringLiteral("Top Half"), QStringLiteral("Bottom Half")});
    edgeHalfControl->setObjectName(QStringLiteral("edgeHalfControl"));
    auto* const layout = row<QVBoxLayout>(6);
    for (SegmentedControl* const control : {edgeState, edgeHalfControl}) {
        control->onChange = [this](int) { edgeStateChanged(); };
        layout->addWidget(control, 0, Qt::AlignLeading);
    }
    return layout;
}

QLayout* AppEditSheet::autoTuckRow() {
    autoTuckCheckbox = new QCheckBox(QStringLiteral("Auto-tuck"));
    autoTuckCheckbox->setObjectName(QStringLiteral("autoTuckCheckbox"));
    autoTuckCheckbox->setToolTip(
        QStringLiteral("Keep the window tucked whenever the app is not active"));
    onSwitched(*autoTuckCheckbox, *this, [this](bool isOn) { autoTuckChanged(isOn); });
    tuckNowButton = new QPushButton;
    tuckNowButton->setObjectName(QStringLiteral("tuckNowButton"));
    // Return is always "Done".
    tuckNowButton->setAutoDefault(false);
    connect(tuckNowButton, &QPushButton::clicked, this, [this] { tuckNowTapped(); });
    auto* const layout = row<QHBoxLayout>(14);
    layout->addWidget(autoTuckCheckbox, 0, Qt::AlignVCenter);
    layout->addWidget(tuckNowButton, 0, Qt::AlignVCenter);
    layout->addStretch();
    return layout;
}

QLayout* AppEditSheet::buttonRow() {
    auto* const cancelButton = new QPushButton(QStringLiteral("Cancel"));
    cancelButton->setAutoDefault(false);
    doneButton = new QPushButton(QStringLiteral("Done"));
    doneButton->setDefault(true);
    auto* const layout = row<QHBoxLayout>(10);
    for (QPushButton* const button : {cancelButton, doneButton}) {
        connect(button, &QPushButton::clicked, this, [this] { finish(); });
        layout->addWidget(button);
    }
    layout->addStretch();
    return layout;
}

}  // namespace quorvel
