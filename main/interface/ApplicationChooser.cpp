#include "main/interface/ApplicationChooser.hpp"

#include <QAbstractListModel>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>
#include <utility>

#include "main/interface/Style.hpp"

namespace quorvel {
namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int iconSize = 24;

/// The toolkit tints the icon of the chosen row in the colour of that row, where it is hard to
/// tell.
QIcon sameWhenChosen(const QIcon& icon) {
    const QPixmap picture = icon.pixmap({iconSize, iconSize}, qApp->devicePixelRatio());
    QIcon result(picture);
    result.addPixmap(picture, QIcon::Selected);
    return result;
}

/// Icons are looked up when they come into sight: there may be hundreds.
class InstalledModel final : public QAbstractListModel {
public:
    InstalledModel(std::vector<InstalledApplication> programs, AppIcons& icons, QObject* parent)
        : QAbstractListModel(parent), programs(std::move(programs)), icons(icons) {}

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(programs.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        const InstalledApplication& program = programs[static_cast<std::size_t>(index.row())];
        switch (role) {
            case Qt::DisplayRole:
                return QString::fromStdString(program.name);
            case Qt::DecorationRole:
                return sameWhenChosen(icons.iconFor(program.path));
            case Qt::ToolTipRole:
            case pathRole:
                return QString::fromStdString(program.path);
            default:
                return {};
        }
    }

private:
    std::vector<InstalledApplication> programs;
    AppIcons& icons;
};

/// Says so where nothing matches the search.
class ProgramList final : public QListView {
protected:
    void paintEvent(QPaintEvent* event) override {
        QListView::paintEvent(event);
        if (model()->rowCount() > 0) return;
        QPainter painter(viewport());
        painter.setPen(Style::colour(Style::Colour::secondaryLabel, palette()));
        painter.drawText(viewport()->rect(), Qt::AlignCenter,
                         QStringLiteral("No application found"));
    }
};

bool isProgram(const QString& path) {
    const QFileInfo file(path);
    return file.isFile() &&
           (file.suffix().compare(QStringLiteral("desktop"), Qt::CaseInsensitive) == 0 ||
            file.isExecutable());
}

}  // namespace

ApplicationChooser::ApplicationChooser(QWidget& parent, const ApplicationCatalog& catalog,
                                       AppIcons& icons,
                                       std::function<void(const std::string&)> onChosen)
    : QDialog(&parent),
      searchField(new QLineEdit),
      list(new ProgramList),
      addButton(new QPushButton(QStringLiteral("Add"))),
      onChosen(std::move(onChosen)) {
    setWindowTitle(QStringLiteral("Quorvel"));
    setWindowFlags(Style::sheetFlags());
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    resize(420, 480);

    auto* const matching = new QSortFilterProxyModel(this);
    matching->setFilterCaseSensitivity(Qt::CaseInsensitive);
    matching->setSourceModel(new InstalledModel(catalog.installed(), icons, this));
    list->setModel(matching);
    list->setIconSize({iconSize, iconSize});
    list->setUniformItemSizes(true);
    list->setAccessibleName(QStringLiteral("Applications"));
    list->setTextElideMode(Qt::ElideRight);

    searchField->setPlaceholderText(QStringLiteral("Search"));
    searchField->setAccessibleName(QStringLiteral("Search"));
    searchField->setClearButtonEnabled(true);
    searchField->installEventFilter(this);
    connect(searchField, &QLineEdit::textChanged, this, [this, matching](const QString& text) {
        matching->setFilterFixedString(text.trimmed());
        list->setCurrentIndex(matching->index(0, 0));
    });

    auto* const otherButton = new QPushButton(QStringLiteral("Other…"));
    auto* const cancelButton = new QPushButton(QStringLiteral("Cancel"));
    otherButton->setAutoDefault(false);
    cancelButton->setAutoDefault(false);
    addButton->setDefault(true);
    addButton->setEnabled(false);
    connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { addButton->setEnabled(current.isValid()); });
    connect(list, &QListView::doubleClicked, this, &ApplicationChooser::accept);
    connect(addButton, &QPushButton::clicked, this, &ApplicationChooser::accept);
    connect(otherButton, &QPushButton::clicked, this, [this] { chooseFromDisk(); });
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);

    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addWidget(otherButton);
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(addButton);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(
        Style::label(QStringLiteral("Choose an application to add."), 13, Style::Colour::label));
    column->addWidget(searchField);
    column->addWidget(list);
    column->addLayout(buttons);
    searchField->setFocus();
}

/// The search field keeps the keyboard while the list is walked through.
bool ApplicationChooser::eventFilter(QObject* watched, QEvent* event) {
    if (watched == searchField && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
            case Qt::Key_Up:
            case Qt::Key_Down:
            case Qt::Key_PageUp:
            case Qt::Key_PageDown:
                QCoreApplication::sendEvent(list, event);
                return true;
            default:
                break;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void ApplicationChooser::accept() {
    const QModelIndex current = list->currentIndex();
    if (current.isValid()) choose(current.data(pathRole).toString().toStdString());
}

void ApplicationChooser::chooseFromDisk() {
    auto* const dialog = new QFileDialog(this, QStringLiteral("Choose an application to add."),
                                         QStringLiteral("/usr/share/applications"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Add"));
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
        if (isProgram(path)) choose(path.toStdString());
    });
    dialog->open();
}

void ApplicationChooser::choose(const std::string& path) {
    // The sheet goes first: what follows may open another one in its place.
    const auto chosen = std::exchange(onChosen, nullptr);
    QDialog::accept();
    if (chosen) chosen(path);
}

}  // namespace quorvel
