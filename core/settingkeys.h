#pragma once

namespace qmr {

// A key of the per-user settings and the value a reader gets when it is absent.
struct SettingKey
{
    const char* name;
    const char* defaultValue;
};

// Every key the program reads or writes, in one place. Path keys default to "" and their
// readers start at the user's home directory.
namespace keys {

// Main window
inline constexpr SettingKey FirstShow{"FirstShow", "Y"};
inline constexpr SettingKey TreeWidth{"tvwMainWidth", "3000"}; // twips
inline constexpr SettingKey LastNavTreeNodeKey{"LastNavTreeNodeKey", ""};

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
inline constexpr SettingKey ScanFeeder{"TWAINADF", "N"};
inline constexpr SettingKey ScanDuplex{"ScanDuplex", "Y"};
inline constexpr SettingKey ScanShowUi{"TWAINShowUI", "N"};
inline constexpr SettingKey ScanNativeTransfer{"TWAINNativeTransfer", "N"};
inline constexpr SettingKey GetDocInfo{"TwainGetDocInfo", "afterscan"}; // "beforescan"
inline constexpr SettingKey AfterScan{"AfterScan", "IMAGEEDIT"};        // "RETURN"
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

} // namespace keys

} // namespace qmr
