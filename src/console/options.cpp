// The verbs, their options and their help.
#include "console/options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "gainsmith_version.h"

namespace gainsmith {
namespace {

constexpr const char* Statuses =
    "Exit status: 0 done, 1 a difference was found, 2 trouble, 3 a value was refused, 4 the link "
    "to the drive was lost, 5 interrupted.";

constexpr int MostRecordings = 1'000'000;

class CommandLine {
 public:
  explicit CommandLine(Options& options) : options_(options) {
    app_.name("gainsmithctl");
    app_.get_formatter()->label("SUBCOMMAND", "VERB");
    app_.get_formatter()->label("TEXT", "VALUE");
    app_.set_help_flag("-h,--help", "This help");
    app_.set_version_flag("--version", std::string("gainsmithctl ") + ProgramVersion,
                          "Its version");
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
    app_.add_option("--port", options_.Port, "COM1 to COM12, or the path of a device (COM1)")
        ->type_name("PORT");
    app_.add_option("--baud", options_.Baud, "9600, 19200 or 38400 (38400)")->type_name("RATE");
    app_.add_option("--device", options_.Device, "Number of the drive on its line, 0 to 63 (1)")
        ->type_name("NUMBER");
    app_.add_flag("--json", options_.Json, "Data as JSON, units in the names");
    app_.add_flag("--quiet", options_.Quiet, "Troubles alone on standard error");
    app_.add_flag("--yes", options_.Yes, "Answers the question whether to go on");
    app_.add_option("--log-frames", options_.FrameLog, "Lists each frame sent in this file")
        ->type_name("FILE");
  }

  CLI::App* AddVerb(const char* name, const char* does, const char* example) {
    CLI::App* verb = app_.add_subcommand(name, does);
    verb->group("Verbs");
    verb->footer(std::string("The options of gainsmithctl --help hold here, too.\nExample: ") +
                 example);
    return verb;
  }

  void AddField(CLI::App* verb, const std::string& name, const char* what) {
    verb->add_option_function<std::string>(
        "--" + name, [this, name](const std::string& text) { options_.Fields[name] = text; }, what);
  }

  void AddCsv(CLI::App* verb) {
    verb->add_option("-o,--output", options_.Csv, "Writes the samples to this CSV file")
        ->type_name("FILE");
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
        ->check(CLI::Range(0, 63).description(""))
        ->type_name("N");
  }

  void AddSettingVerbs() {
    AddVerb("show", "Reads the drive's settings: key, name, value, unit",
            "gainsmithctl show --json --port /dev/ttyUSB0");
    CLI::App* save =
        AddVerb("save", "Reads the drive into a .tvd file", "gainsmithctl save axis1.tvd");
    save->add_option("FILE", options_.File, "The file to write")->type_name("")->required();
    CLI::App* diff = AddVerb("diff", "Lists the settings that differ between A and B",
                             "gainsmithctl diff golden.tvd drive");
    diff->add_option("A", options_.File, "\"drive\", \"factory\" or a .tvd file")
        ->type_name("")
        ->required();
    diff->add_option("B", options_.OtherFile, "The same")->type_name("")->required();
    CLI::App* load = AddVerb("load",
                             "Shows what a file would change, asks, writes it to the drive, reads "
                             "it back and compares",
                             "gainsmithctl load golden.tvd --store --yes");
    load->add_option("FILE", options_.File, "The .tvd file")->type_name("")->required();
    load->add_flag("--store", options_.Store, "Stores the settings in the drive's EEPROM, too");
    load->add_flag("--dry-run", options_.DryRun, "Only shows what would change");
    AddVerb("reset", "Gives the drive its factory values, stores and verifies them",
            "gainsmithctl reset --yes");
    CLI::App* errors =
        AddVerb("errors", "Prints the drive's error log", "gainsmithctl errors --erase current");
    errors->add_option("--erase", options_.Erase, "Erases the newest entry, or all of them")
        ->check(CLI::IsMember({"current", "all"}).description(""))
        ->type_name("current|all");
  }

  void AddMotionVerbs() {
    CLI::App* step = AddVerb("step", "Tests the current loop with a step and scores its answer",
                             "gainsmithctl step 0.5 --kp 400 -o step.csv --yes");
    step->add_option("AMPS", options_.Amperes, "Test current in amperes")
        ->type_name("")
        ->required();
    AddField(step, "kp", "Proportional gain; stays in the drive");
    AddField(step, "ki", "Integral gain; stays in the drive");
    AddCsv(step);

    CLI::App* move = AddVerb("move", "Moves the motor forth and back and scores each recording",
                             "gainsmithctl move --velocity 300 --distance 40000 -o move.csv --yes");
    AddField(move, "velocity", "Velocity in rpm (300)");
    AddField(move, "acceleration", "Acceleration in r/s/s (200)");
    AddField(move, "distance", "Distance in pulses (40000)");
    AddField(move, "interval", "Pause between moves in ms (100)");
    AddField(move, "repeat", "How often it moves forth and back (1)");
    AddField(move, "trace-ms", "Length of a recording in ms, 100 to 3000 (2000)");
    const char* high = "Gain at high speed; stays in the drive";
    for (const char* gain : {"position-kp", "position-kd", "velocity-kp", "velocity-ki"}) {
      AddField(move, gain, high);
    }
    AddField(move, "kvff", "Velocity feed-forward at high speed; stays in the drive");
    AddField(move, "kaff", "Acceleration feed-forward at high speed; stays in the drive");
    const char* low = "Gain at low speed; stays in the drive";
    for (const char* gain : {"low-position-kp", "low-position-ki", "low-position-kd",
                             "low-velocity-kp", "low-velocity-ki"}) {
      AddField(move, gain, low);
    }
    AddCsv(move);

    CLI::App* watch =
        AddVerb("watch", "Records again and again what the motor does, moving nothing",
                "gainsmithctl watch --trace-ms 500 --count 10 -o watch.csv");
    AddField(watch, "trace-ms", "Length of a recording in ms, 100 to 3000 (2000)");
    watch->add_option("--count", options_.Count, "Recordings (0: until it is interrupted)")
        ->check(CLI::Range(0, MostRecordings).description(""))
        ->type_name("N");
    AddCsv(watch);
  }

  Options& options_;
  CLI::App app_{
      "The Gainsmith for KVT518 without a screen: reads, compares, loads and tests "
      "servo drives over a serial line."};
};

// What is told of a command line that names no verb.
std::string WithoutVerb(const CLI::App& app) {
  const std::vector<std::string> words = app.remaining();
  std::string text = words.empty() ? "Say what to do. One of:" : words[0] + " is no verb. One of:";
  for (const CLI::App* verb : app.get_subcommands({})) text += " " + verb->get_name();
  return text + "\nSee gainsmithctl --help.\n";
}

}  // namespace

std::optional<Options> ParseCommandLine(int count, char** words, ExitStatus& status) {
  Options options;
  CommandLine line(options);
  try {
    line.App().parse(count, words);
  } catch (const CLI::ParseError& end) {
    const auto missing = static_cast<int>(CLI::ExitCodes::RequiredError);
    if (end.get_exit_code() == missing && line.App().get_subcommands().empty()) {
      std::cerr << WithoutVerb(line.App());
      status = ExitStatus::Trouble;
      return std::nullopt;
    }
    status = line.App().exit(end) == 0 ? ExitStatus::Done : ExitStatus::Trouble;
    return std::nullopt;
  }
  options.Verb = line.App().get_subcommands().front()->get_name();
  return options;
}

}  // namespace gainsmith
