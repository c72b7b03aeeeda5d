// The verbs, their options and their help.
#include "console/options.h"

#include <CLI/CLI.hpp>

#include "gainsmith_version.h"

namespace gainsmith {
namespace {

constexpr const char* Statuses =
    "Exit status: 0 done, 1 a difference was found, 2 trouble, 3 a value was refused, 4 the link "
    "to the drive was lost, 5 interrupted.";

class CommandLine {
 public:
  explicit CommandLine(Options& options) : options_(options) {
    app_.name("gainsmithctl");
    app_.get_formatter()->label("SUBCOMMAND", "VERB");
    app_.get_formatter()->label("Subcommands", "Verbs");
    app_.get_formatter()->label("TEXT", "VALUE");
    app_.set_version_flag("--version", std::string("gainsmithctl ") + ProgramVersion);
    app_.set_help_all_flag("--help-all", "This help and that of every verb");
    app_.require_subcommand(1);
    app_.fallthrough();
    app_.footer(std::string("Data goes to standard output, all else to standard error.\n") +
                Statuses);
    AddCommon();
    AddPortVerbs();
    AddSettingVerbs();
    AddMotionVerbs();
  }

  CLI::App& App() { return app_; }

 private:
  void AddCommon() {
    app_.add_option("--port", options_.Port, "COM1 to COM12, or the path of a device (COM1)");
    app_.add_option("--baud", options_.Baud, "9600, 19200 or 38400 (38400)");
    app_.add_option("--device", options_.Device, "Number of the drive on its line, 0 to 63 (1)");
    app_.add_flag("--json", options_.Json, "Data as JSON, units in the names");
    app_.add_flag("--quiet", options_.Quiet, "Troubles alone on standard error");
    app_.add_flag("--yes", options_.Yes, "Answers the question whether to go on");
    app_.add_option("--log-frames", options_.FrameLog, "Lists each frame sent in this file");
  }

  CLI::App* AddVerb(const char* name, const char* does, const char* example) {
    CLI::App* verb = app_.add_subcommand(name, does);
    verb->footer(std::string("The options of gainsmithctl --help hold here, too.\nExample: ") +
                 example);
    return verb;
  }

  void AddField(CLI::App* verb, const std::string& name, const char* what) {
    verb->add_option_function<std::string>(
        "--" + name, [this, name](const std::string& text) { options_.Fields[name] = text; }, what);
  }

  void AddCsv(CLI::App* verb) {
    verb->add_option("-o,--output", options_.Csv, "Writes the samples to this CSV file");
  }

  void AddPortVerbs() {
    AddVerb("ports", "Lists COM1 to COM12: device, product, who may open it, who holds it",
            "gainsmithctl ports");
    CLI::App* doctor = AddVerb("doctor",
                               "Walks the way of a connection, says at which step it ends and how "
                               "to mend it",
                               "gainsmithctl doctor --port COM3 --scan --numbers 1 2 3");
    doctor->add_flag("--scan", options_.Scan, "Tries the three rates, one harmless read each");
    doctor->add_option("--numbers", options_.ScanNumbers, "Device numbers that --scan tries")
        ->check(CLI::Range(0, 63));
  }

  void AddSettingVerbs() {
    AddVerb("show", "Reads the drive's settings: key, name, value, unit",
            "gainsmithctl show --json --port /dev/ttyUSB0");
    CLI::App* save =
        AddVerb("save", "Reads the drive into a .tvd file", "gainsmithctl save axis1.tvd");
    save->add_option("FILE", options_.File, "The file to write")->required();
    CLI::App* diff = AddVerb("diff", "Lists the settings that differ between A and B",
                             "gainsmithctl diff golden.tvd drive");
    diff->add_option("A", options_.File, "\"drive\", \"factory\" or a .tvd file")->required();
    diff->add_option("B", options_.OtherFile, "The same")->required();
    CLI::App* load = AddVerb("load",
                             "Shows what a file would change, asks, writes it to the drive, reads "
                             "it back and compares",
                             "gainsmithctl load golden.tvd --store --yes");
    load->add_option("FILE", options_.File, "The .tvd file")->required();
    load->add_flag("--store", options_.Store, "Stores the settings in the drive's EEPROM, too");
    load->add_flag("--dry-run", options_.DryRun, "Only shows what would change");
    AddVerb("reset", "Gives the drive its factory values, stores and verifies them",
            "gainsmithctl reset --yes");
    CLI::App* errors =
        AddVerb("errors", "Prints the drive's error log", "gainsmithctl errors --erase current");
    errors->add_option("--erase", options_.Erase, "Erases the newest entry, or all of them")
        ->check(CLI::IsMember({"current", "all"}));
  }

  void AddMotionVerbs() {
    CLI::App* step = AddVerb("step", "Tests the current loop with a step and scores its answer",
                             "gainsmithctl step 0.5 --kp 400 -o step.csv --yes");
    step->add_option("AMPS", options_.Amperes, "Test current in amperes")->required();
    AddField(step, "kp", "Proportional gain; stays in the drive");
    AddField(step, "ki", "Integral gain; stays in the drive");
    AddCsv(step);

    CLI::App* move = AddVerb("move", "Moves the motor forth and back and scores each recording",
                             "gainsmithctl move --velocity 300 --distance 40000 -o move.csv --yes");
    AddField(move, "velocity", "Velocity in rpm");
    AddField(move, "acceleration", "Acceleration in r/s/s");
    AddField(move, "distance", "Distance in pulses");
    AddField(move, "interval", "Pause between moves in ms");
    AddField(move, "repeat", "Moves forth and back");
    AddField(move, "trace-ms", "Length of a recording in ms, 100 to 3000");
    for (const char* set : {"", "low-"}) {
      const char* what = *set == 0 ? "Gain at high speed; stays in the drive"
                                   : "Gain at low speed; stays in the drive";
      for (const char* gain : {"position-kp", "position-kd", "velocity-kp", "velocity-ki"}) {
        AddField(move, std::string(set) + gain, what);
      }
    }
    AddField(move, "kvff", "Velocity feed-forward gain; stays in the drive");
    AddField(move, "kaff", "Acceleration feed-forward gain; stays in the drive");
    AddField(move, "low-position-ki", "Gain at low speed; stays in the drive");
    AddCsv(move);

    CLI::App* watch =
        AddVerb("watch", "Records again and again what the motor does, moving nothing",
                "gainsmithctl watch --trace-ms 500 --count 10 -o watch.csv");
    AddField(watch, "trace-ms", "Length of a recording in ms, 100 to 3000");
    watch->add_option("--count", options_.Count, "Recordings (0: until it is interrupted)")
        ->check(CLI::NonNegativeNumber);
    AddCsv(watch);
  }

  Options& options_;
  CLI::App app_{
      "The Gainsmith for KVT518 without a screen: reads, compares, loads and tests "
      "servo drives over a serial line."};
};

}  // namespace

std::optional<Options> ParseCommandLine(int count, char** words, ExitStatus& status) {
  Options options;
  CommandLine line(options);
  try {
    line.App().parse(count, words);
  } catch (const CLI::ParseError& end) {
    status = line.App().exit(end) == 0 ? ExitStatus::Done : ExitStatus::Trouble;
    return std::nullopt;
  }
  options.Verb = line.App().get_subcommands().front()->get_name();
  return options;
}

}  // namespace gainsmith
