// Names that the platform layer shares with what stands above it.
#pragma once

// The saver's key below HKEY_CURRENT_USER, and its one value: the folder with the show's package.
inline constexpr char kSaverKey[] = "Software\\OrinLab\\Screensavers\\Tamblor";
inline constexpr char kDataFolderValue[] = "path";

inline constexpr char kPackageFile[] = "tamb.dat";       // the show's package, in that folder
inline constexpr char kLogFile[] = "tamb.log";           // the trace, there or in a user's folder
inline constexpr char kProductFolder[] = "tamblor";      // in share/, and in a user's folders
inline constexpr char kLargeShowFolder[] = "tamblor-4k"; // in share/: the show for large screens
inline constexpr char kSettingsFile[] = "tamblor.conf";  // in kProductFolder of a configuration folder

// Of the shows that one command started, each a process and on a monitor of its own: 1 and up.
inline int showNumber = 1;
