#include "classification/linux_starter_applications.hpp"

#include <array>

namespace lumenote::classification {
namespace {

using namespace starter_tables;

constexpr std::array kLinuxApplicationRules{
    // Documents, spreadsheets and slides: distribution packages, then Flatpak.
    StarterRule{"libreoffice-writer", "LibreOffice Writer", kFocused},
    StarterRule{"libreoffice-calc", "LibreOffice Calc", kFocused},
    StarterRule{"libreoffice-impress", "LibreOffice Impress", kFocused},
    StarterRule{"libreoffice-startcenter", "LibreOffice", kFocused},
    StarterRule{"org.libreoffice.LibreOffice.writer", "LibreOffice Writer", kFocused},
    StarterRule{"org.libreoffice.LibreOffice.calc", "LibreOffice Calc", kFocused},
    StarterRule{"org.libreoffice.LibreOffice.impress", "LibreOffice Impress", kFocused},
    StarterRule{"org.libreoffice.LibreOffice", "LibreOffice", kFocused},
    StarterRule{"onlyoffice-desktopeditors", "ONLYOFFICE", kFocused},
    StarterRule{"org.onlyoffice.desktopeditors", "ONLYOFFICE", kFocused},
    // PDF viewers of the GNOME, KDE, MATE and Cinnamon desktops, and Zathura.
    StarterRule{"org.gnome.Evince", "Document Viewer (Evince)", kFocused},
    StarterRule{"org.gnome.Papers", "Papers", kFocused},
    StarterRule{"org.kde.okular", "Okular", kFocused},
    StarterRule{"atril", "Atril", kFocused},
    StarterRule{"xreader", "Xreader", kFocused},
    StarterRule{"org.pwmt.zathura", "Zathura", kFocused},
    // Notes.
    StarterRule{"com.github.xournalpp.xournalpp", "Xournal++", kFocused},
    StarterRule{"com.github.flxzt.rnote", "Rnote", kFocused},
    StarterRule{"net.cozic.joplin_desktop", "Joplin", kFocused},
    // Development environments.
    StarterRule{"code", "Visual Studio Code", kFocused},
    StarterRule{"com.visualstudio.code", "Visual Studio Code", kFocused},
    StarterRule{"code_code", "Visual Studio Code", kFocused},
    StarterRule{"codium", "VSCodium", kFocused},
    StarterRule{"com.vscodium.codium", "VSCodium", kFocused},
    StarterRule{"codium_codium", "VSCodium", kFocused},
    StarterRule{"org.gnome.Builder", "Builder", kFocused},
    StarterRule{"org.kde.kdevelop", "KDevelop", kFocused},
    StarterRule{"org.qt-project.qtcreator", "Qt Creator", kFocused},
    // Flash cards and a knowledge base.
    StarterRule{"anki", "Anki", kFocused},
    StarterRule{"net.ankiweb.Anki", "Anki", kFocused},
    StarterRule{"obsidian", "Obsidian", kFocused},
    StarterRule{"md.obsidian.Obsidian", "Obsidian", kFocused},
    StarterRule{"obsidian_obsidian", "Obsidian", kFocused},
    // Video meetings.
    StarterRule{"Zoom", "Zoom", kNeutral},
    StarterRule{"us.zoom.Zoom", "Zoom", kNeutral},
    StarterRule{"teams", "Microsoft Teams (classic)", kNeutral},
    StarterRule{"teams-for-linux", "Teams for Linux", kNeutral},
    StarterRule{"com.github.IsmaelMartinez.teams_for_linux", "Teams for Linux", kNeutral},
    // Mail.
    StarterRule{"thunderbird", "Thunderbird", kNeutral},
    StarterRule{"org.mozilla.Thunderbird", "Thunderbird", kNeutral},
    StarterRule{"thunderbird_thunderbird", "Thunderbird", kNeutral},
    StarterRule{"org.gnome.Evolution", "Evolution", kNeutral},
    StarterRule{"org.gnome.Geary", "Geary", kNeutral},
    StarterRule{"org.kde.kmail2", "KMail", kNeutral},
    // Messaging.
    StarterRule{"signal-desktop", "Signal", kNeutral},
    StarterRule{"org.signal.Signal", "Signal", kNeutral},
    StarterRule{"signal-desktop_signal-desktop", "Signal", kNeutral},
    StarterRule{"org.telegram.desktop", "Telegram", kNeutral},
    StarterRule{"telegram-desktop_telegram-desktop", "Telegram", kNeutral},
    StarterRule{"slack", "Slack", kNeutral},
    StarterRule{"com.slack.Slack", "Slack", kNeutral},
    StarterRule{"slack_slack", "Slack", kNeutral},
    StarterRule{"discord", "Discord", kNeutral},
    StarterRule{"com.discordapp.Discord", "Discord", kNeutral},
    StarterRule{"discord_discord", "Discord", kNeutral},
    // Music streaming and games.
    StarterRule{"spotify", "Spotify", kDistracting},
    StarterRule{"com.spotify.Client", "Spotify", kDistracting},
    StarterRule{"spotify_spotify", "Spotify", kDistracting},
    StarterRule{"steam", "Steam", kDistracting},
    StarterRule{"steam_steam", "Steam", kDistracting},
};

}  // namespace

std::span<const StarterRule> linuxStarterApplicationRules() {
    return kLinuxApplicationRules;
}

}  // namespace lumenote::classification
