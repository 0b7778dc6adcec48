#pragma once

#include <array>
#include <cstddef>
#include <utility>

namespace qmr {

// A key of the per-user settings and the value a reader gets when it is absent.
struct SettingKey
{
    const char* name;
    const char* defaultValue;
};

// A yes-or-no key, written "Y" or "N" in the file and read as a bool.
struct FlagKey
{
    const char* name;
    bool defaultValue;
};

// A key whose value is one of a few words, read as an enum: each mode with the word that the
// file holds for it. An absent key, or a word the table lacks, reads as the default.
template <typename Mode, std::size_t N> struct ModeKey
{
    const char* name;
    Mode defaultValue;
    std::array<std::pair<Mode, const char*>, N> words;
};

// What follows a scan: the page opens in the viewer, or the window comes back.
enum class AfterScanMode { OpenViewer, Return };
// When a new document's details are asked for: after its pages are scanned, or before.
enum class DocInfoTime { AfterScan, BeforeScan };

// Every key the program reads or writes, in one place. Path keys default to "" and their
// readers start at the user's home directory.
namespace keys {

// Main window
inline constexpr FlagKey FirstShow{"FirstShow", true};
inline constexpr SettingKey TreeWidth{"tvwMainWidth", "3000"}; // twips
inline constexpr SettingKey LastNavTreeNodeKey{"LastNavTreeNodeKey", ""};
// Where a run that was made to end kept its viewers' unsaved pictures; told at the next start.
inline constexpr SettingKey RecoveredTo{"RecoveredTo", ""};
// The language packs the text on the pages is read with, "+" between them ("deu+eng"); ""
// for the user's own language where its pack is installed, else English.
inline constexpr SettingKey OcrLanguages{"OcrLanguages", ""};

// Page pane and viewer
inline constexpr SettingKey ThumbSide{"ThumbSide", "100"};
inline constexpr SettingKey ThumbView{"ThumbView", "thumbnail"}; // "thumbnail", "list"
inline constexpr SettingKey DisplayCount{"DisplayCount", "20"};
inline constexpr SettingKey ZoomDefault{"ZoomDefault", "NONE"}; // "FITWIDTH", "FITHEIGHT"
inline constexpr SettingKey LastSaveAsPath{"LastSaveAsPath", ""};

// Scanning
inline constexpr SettingKey ImageType{"TWAINImageType", "document"}; // "document", "picture"
inline constexpr SettingKey SetupScanSettings{"SetupScanSettings", ""};
inline constexpr SettingKey ScanSource{"TWAINSource", ""};
inline constexpr SettingKey CameraSource{"TWAINCameraSource", ""};
inline constexpr FlagKey ScanFeeder{"TWAINADF", false};
inline constexpr FlagKey ScanDuplex{"ScanDuplex", true};
inline constexpr FlagKey ScanShowUi{"TWAINShowUI", false};
inline constexpr FlagKey ScanNativeTransfer{"TWAINNativeTransfer", false};
inline constexpr ModeKey<DocInfoTime, 2> GetDocInfo{
    "TwainGetDocInfo",
    DocInfoTime::AfterScan,
    {{{DocInfoTime::AfterScan, "afterscan"}, {DocInfoTime::BeforeScan, "beforescan"}}}};
inline constexpr ModeKey<AfterScanMode, 2> AfterScan{
    "AfterScan",
    AfterScanMode::OpenViewer,
    {{{AfterScanMode::OpenViewer, "IMAGEEDIT"}, {AfterScanMode::Return, "RETURN"}}}};
inline constexpr SettingKey PicScanType{"PicScanType", "Color"};
inline constexpr SettingKey DocScanType{"DocScanType", "Color"};
inline constexpr SettingKey PicDpi{"PicDPIOverride", "300"};
inline constexpr SettingKey DocDpi{"DocDPIOverride", "150"};
inline constexpr SettingKey PicQuality{"PicQualityOverride", "30"};
inline constexpr SettingKey DocQuality{"DocQualityOverride", "50"};

// Printing
inline constexpr SettingKey Printer{"Printer", ""};
inline constexpr SettingKey PrintWidthPct{"PrintWidthPct", "100"};
inline constexpr SettingKey PrintHeightPct{"PrintHeightPct", "100"};
inline constexpr SettingKey PrintPdfPath{"PrintPdfPath", ""}; // last directory of a PDF print

// Mail
inline constexpr SettingKey EmailSystem{"EmailSystem", ""}; // "MAPI", "CDONTS"
inline constexpr SettingKey EmailAddress{"EmailAddress", ""};
inline constexpr SettingKey LastSendTo{"LastSendTo", ""};
inline constexpr SettingKey SmtpServer{"SmtpServer", "localhost"};
inline constexpr SettingKey SmtpPort{"SmtpPort", "25"};
inline constexpr SettingKey SmtpUser{"SmtpUser", ""};
inline constexpr SettingKey SmtpPassword{"SmtpPassword", ""};
inline constexpr SettingKey SmtpSecurity{"SmtpSecurity", "none"}; // "starttls", "tls"
inline constexpr SettingKey SendmailPath{"SendmailPath", "/usr/sbin/sendmail"};

// Exchange and choosers
inline constexpr SettingKey LastOutputPath{"LastOutputPath", ""};
inline constexpr SettingKey LastImportPath{"LastImportPath", ""};
inline constexpr SettingKey PathSelect{"PathSelect", ""};
// The directory a document was last saved to as a searchable PDF.
inline constexpr SettingKey SearchablePdfPath{"SearchablePdfPath", ""};

} // namespace keys

} // namespace qmr
