#include "main/interface/DisplayCardView.hpp"

#include <QBoxLayout>
#include <QGraphicsOpacityEffect>
#include <QHelpEvent>
#include <QPainter>
#include <QPushButton>
#include <cmath>
#include <utility>

#include "main/interface/ElidedLabel.hpp"
#include "main/interface/PlainToolTip.hpp"
#include "main/interface/ScreenDiagramView.hpp"
#include "main/interface/Style.hpp"
#include "main/interface/Symbols.hpp"

namespace quorvel {
namespace {

constexpr int pictureWidth = 180;
constexpr int pictureHeightWithoutAspect = 110;
constexpr double absentOpacity = 0.62;

int pictureHeight(const std::optional<Size>& aspect) {
    if (!aspect || !(aspect->width > 0) || !(aspect->height > 0)) return pictureHeightWithoutAspect;
    const double height = 176 * aspect->height / aspect->width;
    if (!std::isfinite(height)) return pictureHeightWithoutAspect;
    return static_cast<int>(std::lround(std::clamp(height, 1.0, QWIDGETSIZE_MAX * 1.0)));
}

QString toText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString placeText(const Assignment& row) {
    if (const auto* const corner = std::get_if<HotZoneCorner>(&row.slot.position)) {
        return toText(label(*corner)) + QStringLiteral(" hot corner");
    }
    if (std::holds_alternative<Side>(row.slot.position)) {
        return toText(row.edge ? row.edge->rawValue() : "") + QStringLiteral(" tuck");
    }
    return QStringLiteral("hides");
}

/// The sign next to a row; what is wrong is its tool tip.
class WarningSign final : public QLabel {
public:
    explicit WarningSign(const QString& warning) {
        setPixmap(icon().pixmap(side, side));  // by this it is an image to assistive technology
        setFixedSize(side, side);
        setToolTip(warning);
        setAccessibleName(QStringLiteral("Warning"));
        setAccessibleDescription(warning);
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::ToolTip) return QLabel::event(event);
        showPlainToolTip(*static_cast<QHelpEvent*>(event), *this, toolTip(), rect());
        return true;
    }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.drawPixmap(rect(), icon().pixmap(QSize(side, side), devicePixelRatioF()));
    }

private:
    static constexpr int side = 14;

    QIcon icon() const {
        return Symbols::symbol(QStringLiteral("exclamationmark.triangle.fill"),
                               Style::colour(Style::Colour::red, palette()));
    }
};

template <class Layout>
Layout* stack(QWidget* widget, int spacing) {
    auto* const layout = new Layout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

}  // namespace

DisplayCardView::DisplayCardView(DisplayCard card, IconForApp iconForApp, NameForApp nameForApp,
                                 OnEdit onEdit, OnForget onForget, OnAssign onAssign,
                                 QWidget* parent)
    : QWidget(parent),
      card(std::move(card)),
      onEdit(std::move(onEdit)),
      onForget(std::move(onForget)) {
    auto* const body = new QWidget;
    auto* const columns = stack<QHBoxLayout>(body, 14);
    columns->addWidget(picture(std::move(iconForApp), nameForApp, std::move(onAssign)), 0,
                       Qt::AlignTop);
    columns->addWidget(list(nameForApp), 1);

    auto* const all = stack<QVBoxLayout>(this, 6);
    all->addWidget(heading());
    all->addWidget(body);
    setAccessibleName(QString::fromStdString(this->card.name));

    if (this->card.isAttached) return;
    auto* const effect = new QGraphicsOpacityEffect(this);
    effect->setOpacity(absentOpacity);
    setGraphicsEffect(effect);
}

void DisplayCardView::editTapped(int tag) {
    if (tag < 0 || static_cast<std::size_t>(tag) >= card.rows.size() || !onEdit) return;
    // Copied: this view may be gone before it returns.
    const Assignment row = card.rows[static_cast<std::size_t>(tag)];
    const OnEdit edit = onEdit;
    edit(row);
}

void DisplayCardView::forgetTapped() {
    if (!onForget) return;
    const std::string ref = card.ref;
    const OnForget forget = onForget;
    forget(ref);
}

QWidget* DisplayCardView::heading() const {
    auto* const heading = new QWidget;
    auto* const row = stack<QHBoxLayout>(heading, 8);
    row->addWidget(new ElidedLabel(QString::fromStdString(card.name), {}, 11,
                                   Style::Colour::secondaryLabel, QFont::DemiBold));
    if (!card.isAttached) {
        QLabel* const note =
            Style::label(QStringLiteral("Not connected"), 11, Style::Colour::tertiaryLabel);
        note->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        row->addWidget(note);
    }
    row->addStretch(1);
    return heading;
}

QWidget* DisplayCardView::picture(IconForApp iconForApp, NameForApp nameForApp, OnAssign onAssign) {
    auto* const diagram = new ScreenDiagramView;
    diagram->setFixedSize(pictureWidth, pictureHeight(card.aspect));
    diagram->iconForApp = std::move(iconForApp);
    diagram->nameForApp = std::move(nameForApp);
    diagram->onSlot = [edit = onEdit, assign = std::move(onAssign), ref = card.ref](
                          const Slot& slot, const std::optional<Assignment>& assignment) {
        if (assignment) {
            if (edit) edit(*assignment);
        } else if (assign) {
            assign(ref, slot);
        }
    };
    diagram->setCard(card);
    return diagram;
}

QWidget* DisplayCardView::list(const NameForApp& nameForApp) {
    auto* const list = new QWidget;
    auto* const rows = stack<QVBoxLayout>(list, 3);
    for (int i = 0; i < static_cast<int>(card.rows.size()); ++i) {
        const std::string& path = card.rows[static_cast<std::size_t>(i)].appPath;
        rows->addLayout(rowView(i, nameForApp ? nameForApp(path) : path));
    }
    if (card.rows.empty()) {
        QLabel* const empty = Style::label(
            QStringLiteral(
                "Nothing here yet. Click a corner or edge on the picture to assign an app."),
            11, Style::Colour::tertiaryLabel);
        empty->setWordWrap(true);
        rows->addWidget(empty);
    }
    if (!card.isAttached) {
        QPushButton* const forget = Style::smallButton(QStringLiteral("Forget This Display…"));
        forget->setAccessibleDescription(QString::fromStdString(card.name));
        connect(forget, &QPushButton::clicked, this, [this] { forgetTapped(); });
        rows->addWidget(forget);
    }
    rows->addStretch(1);
    return list;
}

QLayout* DisplayCardView::rowView(int index, const std::string& name) {
    const Assignment& assignment = card.rows[static_cast<std::size_t>(index)];
    auto* const row = new QHBoxLayout;
    row->setSpacing(6);
    auto* const text = new ElidedLabel(QString::fromStdString(name),
                                       QStringLiteral(" — ") + placeText(assignment), 12);
    row->addWidget(text);
    QPushButton* const edit = Style::smallButton(QStringLiteral("Edit"));
    edit->setAccessibleName(QStringLiteral("Edit ") + text->text());
    connect(edit, &QPushButton::clicked, this, [this, index] { editTapped(index); });
    if (assignment.warning) {
        const QString warning = QString::fromStdString(*assignment.warning);
        row->addWidget(new WarningSign(warning));
        edit->setAccessibleDescription(warning);
    }
    row->addWidget(edit);
    row->addStretch(1);
    return row;
}

}  // namespace quorvel
