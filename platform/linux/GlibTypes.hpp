#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

namespace quorvel::native {

struct ObjectDeleter {
    void operator()(gpointer object) const { g_object_unref(object); }
};
/// Owns one reference.
template <class T>
using ObjectRef = std::unique_ptr<T, ObjectDeleter>;

struct MemoryDeleter {
    void operator()(gpointer memory) const { g_free(memory); }
};
using OwnedText = std::unique_ptr<gchar, MemoryDeleter>;

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using OwnedKeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

struct ErrorDeleter {
    void operator()(GError* error) const { g_error_free(error); }
};
using OwnedError = std::unique_ptr<GError, ErrorDeleter>;

/// Takes the text over; empty for null.
inline std::string takeText(gchar* text) {
    const OwnedText owner(text);
    return text != nullptr ? std::string(text) : std::string();
}

}  // namespace quorvel::native
