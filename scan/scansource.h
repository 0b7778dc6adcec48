#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace qmr {

// A scanner or camera as the system reports it. The stored source names of the settings are
// device names.
struct ScanDevice
{
    QString name;   // "test:0", "genesys:libusb:001:004"
    QString vendor; // "Noname"
    QString model;  // "frontend-tester"
    QString type;   // "flatbed scanner", "virtual device"
    // What a person recognises: vendor and model, then the device name.
    QString label() const;
};

// The colour of a scan, by the letters of the settings: "B", "G", anything else colour.
enum class ScanColour { LineArt, Grey, Colour };

// What one scan asks of the device.
struct ScanRequest
{
    QString device;
    int dpi = 150;
    ScanColour colour = ScanColour::Colour;
    bool feeder = false; // every sheet on the feeder until it is empty
    bool duplex = false; // with the feeder: both sides where the device can
};

// What the device was set to for a request, as it accepted it.
struct ScanSetup
{
    QString device;      // what a person recognises: vendor, model and name where known
    double dpi = 0;      // the resolution the device took (nearest to the one asked)
    QString mode;        // the value of its mode option, "" when it has none
    QString source;      // the value of its source option, "" when it has none
    bool feeder = false; // a feeder source was chosen: sheets are read until it is empty
    bool duplex = false;
};

// One of the device's own options, as its descriptor and its present value describe it.
struct ScanOption
{
    enum class Type { Bool, Int, Fixed, String, Button, Group };
    enum class Constraint { None, Range, WordList, StringList };

    QString name; // "resolution"; "" for a group
    QString title;
    QString description;
    QString group; // the title of the group it stands in
    Type type = Type::Int;
    QString unit;  // "dpi", "mm", "%", "µs", "bit", "px", ""
    int count = 1; // values in the option: more than one is an array
    Constraint constraint = Constraint::None;
    double minimum = 0;
    double maximum = 0;
    double quant = 0;
    QList<double> words;
    QStringList strings;
    QVariant value; // bool, int, double or QString; invalid when it cannot be read
    bool active = true;
    bool settable = true;
    bool advanced = false;

    // What the options dialog can offer for change.
    bool editable() const
    {
        return active && settable && count == 1 && type != Type::Group && type != Type::Button;
    }
};

// How a scan ended.
struct ScanEnd
{
    enum class Reason { Done, Cancelled, Failed };
    Reason reason = Reason::Done;
    QString device;      // what a person recognises: vendor, model and name where known
    QString status;      // the device's own status text on failure ("Document feeder jammed")
    bool atOpen = false; // the device could not be opened or set up
};

// A source of scanned pages: the device list and one scan at a time, read off the GUI thread.
// Every answer comes as a signal on the thread of the source's owner.
class ScanSource : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // Looks for devices; devicesFound() follows, which can take seconds.
    virtual void findDevices() = 0;
    // Opens the device and sets the request's resolution, colour and source; opened() or
    // finished() with the failure follows.
    virtual void open(const ScanRequest& request) = 0;
    // Changes one option of the open device; optionsChanged() follows.
    virtual void setOption(const QString& name, const QVariant& value) = 0;
    // Reads the first sheet; pageAcquired() follows for each sheet, finished() at the end.
    virtual void readPages() = 0;
    // After a page was handled: reads the next sheet from the feeder, or ends the scan.
    virtual void nextPage() = 0;
    // Stops the device at once (from any thread); the scan ends with Cancelled.
    virtual void cancel() = 0;
    // Ends the scan without reading (after the device's options were declined).
    virtual void close() = 0;

signals:
    void devicesFound(const QVector<qmr::ScanDevice>& devices, const QString& failure);
    void opened(const QVector<qmr::ScanOption>& options, const qmr::ScanSetup& setup);
    void optionsChanged(const QVector<qmr::ScanOption>& options, const QString& failure);
    // A sheet is being read: its number from 1, and how much of it has come (0..100; -1 when
    // the device does not know the length beforehand).
    void sheetProgress(int sheet, int percent);
    void pageAcquired(const QImage& image, int sheet);
    void finished(const qmr::ScanEnd& end);
};

} // namespace qmr

Q_DECLARE_METATYPE(qmr::ScanDevice)
Q_DECLARE_METATYPE(qmr::ScanOption)
Q_DECLARE_METATYPE(qmr::ScanSetup)
Q_DECLARE_METATYPE(qmr::ScanEnd)
Q_DECLARE_METATYPE(qmr::ScanRequest)
