// The starter application table for Linux desktops, which sits beside the
// fixed table keyed by bundle identifiers: Linux applications are recorded
// under their desktop-entry ids, which that table never names.
//
// How the rows were chosen:
// - Each row stands for an application of a kind the fixed table already
//   suggests, with the same class: document, spreadsheet and slide editors,
//   PDF viewers, handwritten and plain notes, development environments, Anki
//   and Obsidian (focused); video meetings, mail and messaging (neutral);
//   music streaming and game stores (distracting). Where a Mac row names an
//   application the Mac ships with (Preview, Mail, Notes), the rows name the
//   counterparts the common Linux desktops ship (GNOME, KDE, MATE, Cinnamon).
//   Applications with no Linux desktop client (Instagram, TikTok, Netflix,
//   Twitch, ChatGPT, Claude, OneNote) have no row; their websites are in the
//   website table.
// - Keys are ids as the X11 observer records them: the desktop-file id without
//   ".desktop" of the entry a window resolves to. Distribution packages name
//   their files after the package or a reverse-DNS id ("libreoffice-writer",
//   "org.gnome.Evince"), Flatpak names them after the application id
//   ("com.spotify.Client"), and snapd after the snap and its application
//   ("spotify_spotify"). An application packaged in several of these ways has
//   one row per id.
// - An id already matched by a row of the fixed table (the Flatpak Steam id
//   "com.valvesoftware.Steam" equals its row in another letter case) gets no
//   second row: the two tables never share a key, in any letter case.
// - Rows follow the fixed table's classes only: focused, neutral or
//   distracting; browsers have none (their websites decide).
#pragma once

#include <span>

#include "classification/starter_suggestions.hpp"

namespace lumenote::classification {

// The Linux rows in the order the settings screen lists them. Compiled in,
// never stored; matched in any letter case, like the fixed table.
std::span<const StarterRule> linuxStarterApplicationRules();

}  // namespace lumenote::classification
