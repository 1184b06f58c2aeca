#pragma once

#include "cli/base/ExportOptions.h"
#include "cli/probes/RegistryOptions.h"

#include <array>

namespace mirovane {

/// How to run: on the command line or in a settings file.
inline constexpr auto stationLastingOptions = joined(
    joined(
        std::array{
            OptionDefinition{"--live-stat", 0, "", "run Live Stat; without it the station only watches"},
            OptionDefinition{"--discover", 0, "", "run Live Discover over the ranges of the datafile"},
            OptionDefinition{"--take-over", 0, "",
                             "answer Yes when another station runs what is to run here"},
            OptionDefinition{"--run-sec", 1, "N", "pause between two runs in seconds, for this station only"},
            OptionDefinition{"--per-run", 1, "N", "device checks per run, for this station only"},
            OptionDefinition{"--confirm-off", 1, "N",
                             "repeat a failed test of a device that is On N times (0 to 5), for this station "
                             "only"},
            OptionDefinition{"--export", 1, "OUT", "write the List View's rows to OUT whenever they change"},
        },
        exportFormatOptions),
    std::array{
        OptionDefinition{"--metrics", 1, "OUT.prom",
                         "write metrics for a monitoring engine to OUT.prom after every run"},
        OptionDefinition{"--log", 1, "WEIGHT", "print what weighs at least debug (all), info, notice or err"},
        credentialsOption,
        smbPortOption,
    });

/// How to begin and to end: for this start alone.
inline constexpr std::array stationStartOptions{
    OptionDefinition{"--now", OptionDefinition::recordIDs, "RECID...",
                     "start with Live Stat Now on these devices"},
    OptionDefinition{"--loops", 1, "N",
                     "end after N loops over the devices (a pass of --now alone counts as one)"},
    OptionDefinition{"--for", 1, "SECONDS", "end after this time"},
    OptionDefinition{"--settings", 1, "CONF", "take datafile and options from the file CONF, see below"},
    OptionDefinition{"--json", 0, "", "one JSON object a line"},
};

/// Every option of `station`.
inline constexpr auto stationOptions = joined(stationLastingOptions, stationStartOptions);

/// What a settings file may hold.
inline constexpr auto stationSettingsKeys =
    joined(std::array{OptionDefinition{"--datafile", 1, "FILE", "the datafile, from the root on"}},
           stationLastingOptions);

} // namespace mirovane
