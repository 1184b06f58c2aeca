#pragma once

#include "cli/station/MetricsText.h"
#include "model/DocumentObserver.h"
#include "model/MessageLog.h"
#include "model/find/QuickFind.h"
#include "platform/Clock.h"
#include "platform/Timers.h"
#include "station/Station.h"
#include "station/export/ExportWriter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// Keeps a file with the state of every device and of the station itself for a monitoring engine: written
/// anew after every run of Live Stat and after every reload, and each minute, so that a file that grows old
/// tells of a station that is gone. A reader sees the old file or the new one, whole. Main thread; a folder
/// that does not answer holds up the writing thread alone.
class CStationMetrics final : private StationObserver, private DocumentObserver, private LogListener {
public:
    using MakeFiles = std::function<std::shared_ptr<Files>()>;

    /// All of it outlives this object; a null `makeFiles` means the system's.
    CStationMetrics(CStation& station, CMessageLog& log, const Clock& clock, TimerFactory& timers,
                    MakeFiles makeFiles = nullptr);
    ~CStationMetrics() override;
    CStationMetrics(const CStationMetrics&) = delete;
    CStationMetrics& operator=(const CStationMetrics&) = delete;

    /// From now on into this file; empty: none.
    void writeTo(const std::string& target);

    /// Why the file could not be written; nothing where it was, or where none is wanted.
    std::optional<FileError> error() const;

private:
    // StationObserver
    void listSettled() override { write(); }
    void indicatorsChanged() override;

    // DocumentObserver
    void recordAdded(const CHardware&) override { devices_.reset(); }
    void recordChanged(const CHardware&, const CHardware&) override { devices_.reset(); }
    void recordRemoved(const CHardware&) override { devices_.reset(); }
    void recordRenumbered(std::int32_t, std::int32_t) override { devices_.reset(); }
    void documentReplaced() override { devices_.reset(); }

    // LogListener
    void lineLogged(const LogLine& line) override { troubles_ += line.kind == LogKind::Trouble ? 1 : 0; }

    void write();
    void describeDevices(CMetricsText& text, const std::string& datafile);
    void describeStation(CMetricsText& text, const std::string& datafile) const;
    void describeOwners(CMetricsText& text, const std::string& datafile) const;
    std::int64_t now() const;

    CStation& station_;
    CMessageLog& log_;
    const Clock& clock_;
    MakeFiles makeFiles_;
    CQuickFind places_;
    std::unique_ptr<Timer> minute_;
    std::unique_ptr<CExportWriter> writer_;
    std::string target_;
    std::optional<CMetricsText> devices_; ///< their lines, as long as no record has changed
    std::int64_t lastRun_ = 0;
    std::int64_t troubles_ = 0;
};

} // namespace mirovane
