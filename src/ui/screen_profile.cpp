#include "ui/screen_profile.h"

#include <QGuiApplication>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <xcb/xcb.h>

namespace mirellon::ui {

namespace {

struct Freer {
  void operator()(void* memory) const { std::free(memory); }  // NOLINT: the library allocates so
};
template <typename T>
using Reply = std::unique_ptr<T, Freer>;

constexpr std::uint32_t kMostWords = (std::uint32_t{8} << 20U) / 4;

// A property of the first root window; empty: there is none of that name.
std::string RootProperty(xcb_connection_t* connection, const std::string& name) {
  const auto named = xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data());
  const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, named, nullptr));
  if (atom == nullptr || atom->atom == XCB_ATOM_NONE) return {};
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  const auto asked =
      xcb_get_property(connection, 0, root, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, kMostWords);
  const Reply<xcb_get_property_reply_t> property(xcb_get_property_reply(connection, asked, nullptr));
  if (property == nullptr || property->format != 8 || property->bytes_after != 0) return {};
  const auto* bytes = static_cast<const char*>(xcb_get_property_value(property.get()));
  return {bytes, static_cast<std::size_t>(std::max(xcb_get_property_value_length(property.get()), 0))};
}

}  // namespace

std::string ScreenProfile(const QScreen* screen) {
  const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr || x11->connection() == nullptr) return {};
  const auto screens = QGuiApplication::screens();
  const auto index = std::max<qsizetype>(screens.indexOf(const_cast<QScreen*>(screen)), 0);
  const std::string name = "_ICC_PROFILE";
  return RootProperty(x11->connection(), index == 0 ? name : name + "_" + std::to_string(index));
}

}  // namespace mirellon::ui
