// Draws each state of the settings, in the light and in the dark, at the scale of the process:
//
//   quorvel_settings_pictures FOLDER [NAME …]
//
// writes FOLDER/STATE-light@1x.png and so on; all of them, or the states whose names begin so.
// Fails when a state cannot be reached or its picture cannot be one.

#include <png.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QSet>
#include <QStyleFactory>
#include <algorithm>
#include <cstdio>
#include <exception>

#include "main/interface/IndicatorStyle.hpp"
#include "tests/pictures/Look.hpp"
#include "tests/pictures/States.hpp"

namespace quorvel::pictures {
namespace {

/// The mean of many pixels, from 0 to 255.
double lightness(const QImage& image) {
    double sum = 0;
    int count = 0;
    for (int y = 0; y < image.height(); y += 7) {
        for (int x = 0; x < image.width(); x += 7, ++count) sum += qGray(image.pixel(x, y));
    }
    return sum / count;
}

bool isBlank(const QImage& image) {
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) colours.insert(image.pixel(x, y));
        if (colours.size() > 50) return false;
    }
    return true;
}

void check(const QImage& picture, const Scene& scene, bool isLight) {
    const QSize least = scene.window().size() * scene.window().devicePixelRatioF();
    if (picture.width() < least.width() || picture.height() < least.height()) {
        throw Failure("the picture is smaller than the window");
    }
    if (isBlank(picture)) throw Failure("the picture is blank");
    if ((lightness(picture) > 128) != isLight) throw Failure("the picture has the wrong colours");
}

/// Fast rather than small: the toolkit's own way takes longer than all the drawing.
void save(const QImage& picture, const std::string& file) {
    const QImage pixels = picture.convertToFormat(QImage::Format_RGB888);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(pixels.width());
    image.height = static_cast<png_uint_32>(pixels.height());
    image.format = PNG_FORMAT_RGB;
    image.flags = PNG_IMAGE_FLAG_FAST;
    if (png_image_write_to_file(&image, file.c_str(), 0, pixels.constBits(),
                                static_cast<png_int_32>(pixels.bytesPerLine()), nullptr) == 0) {
        throw Failure("cannot write " + file);
    }
}

void draw(const State& state, const Look& look, const QString& folder) {
    wear(look);
    Scene scene;
    state.reach(scene);
    if (scene.picture().isNull()) scene.take();
    check(scene.picture(), scene, look.name == QStringLiteral("light"));
    const QString file = QStringLiteral("%1/%2-%3@%4x.png")
                             .arg(folder, QString::fromStdString(state.name), look.name)
                             .arg(qRound(scene.picture().devicePixelRatio()));
    save(scene.picture(), file.toStdString());
}

/// Of those about what there is no screen for, there are hundreds.
void tellWarnings(QtMsgType type, const QMessageLogContext&, const QString& text) {
    const bool isMissed = text.startsWith(QStringLiteral("This plugin does not support")) ||
                          text.contains(QStringLiteral("XDG_RUNTIME_DIR"));
    if (type != QtDebugMsg && !isMissed) std::fprintf(stderr, "%s\n", qPrintable(text));
}

/// The toolkit knows no theme off the screen; any of these has the common programs.
void findIcons() {
    QIcon::setThemeSearchPaths({QStringLiteral("/usr/local/share/icons"),
                                QStringLiteral("/usr/share/icons"), QStringLiteral(":/icons")});
    for (const char* const name : {"Papirus", "breeze", "Adwaita"}) {
        QIcon::setThemeName(QString::fromUtf8(name));
        if (QIcon::hasThemeIcon(QStringLiteral("utilities-terminal"))) return;
    }
}

bool isWanted(const State& state, const QStringList& names) {
    return names.isEmpty() || std::any_of(names.begin(), names.end(), [&](const QString& name) {
               return state.name.starts_with(name.toStdString());
           });
}

int drawAll(const QString& folder, const QStringList& names) {
    int drawn = 0;
    int failures = 0;
    for (const auto& states : {windowStates(), sheetStates(), dialogStates(), focusStates()}) {
        for (const State& state : states) {
            if (!isWanted(state, names)) continue;
            for (const Look& look : looks()) {
                try {
                    draw(state, look, folder);
                    ++drawn;
                } catch (const std::exception& failure) {
                    ++failures;
                    std::fprintf(stderr, "%s-%s: %s\n", state.name.c_str(), qPrintable(look.name),
                                 failure.what());
                }
            }
        }
    }
    std::printf("%d pictures in %s\n", drawn, qPrintable(folder));
    return failures == 0 && drawn > 0 ? 0 : 1;
}

}  // namespace
}  // namespace quorvel::pictures

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(quorvel::pictures::tellWarnings);
    QApplication::setStyle(QStringLiteral("Fusion"));
    const QApplication application(argc, argv);
    // What the toolkit has on a desktop that names no font.
    QApplication::setFont(QFont(QStringLiteral("Sans Serif"), 9));
    quorvel::IndicatorStyle::install();
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty()) {
        std::fputs("usage: quorvel_settings_pictures FOLDER [NAME …]\n", stderr);
        return 2;
    }
    const QString folder = arguments.takeFirst();
    if (!QDir().mkpath(folder)) return 1;
    quorvel::pictures::findIcons();
    return quorvel::pictures::drawAll(folder, arguments);
}
