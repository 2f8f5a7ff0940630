#pragma once

#include <span>

namespace thalvorn::app {

/// One line of the menu bar. Choosing it posts `notification`; where a page belongs to it, that page opens first.
struct Command {
  const char16_t* menu;          ///< "&File" …; null ends nothing and is shown in no menu (a notification only).
  const char16_t* title;         ///< Empty for a separator.
  const char16_t* shortcut;      ///< Portable text such as "Ctrl+K"; empty for none.
  const char16_t* notification;  ///< The name posted in the program; empty for a line that cannot be chosen.
  const char16_t* page;          ///< Page opened before posting; empty to stay.
  const char16_t* needs = u"";   ///< Page whose rights it needs, where it opens none.
};

/// The menu bar's lines in order, and after them the notifications that no menu posts.
std::span<const Command> commandTable();

}  // namespace thalvorn::app
