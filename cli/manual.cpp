// Writes the manual page or the shell completion of `vexa` from the options that --help shows.
// usage: vexa_manual man|bash
//
// The build runs this program, so neither text can differ from what the command accepts.
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include "cli/application.h"

namespace {

// Text as roff shows it unchanged: no escapes, no requests, hyphens that can be searched for.
std::string roff(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else {
      // A dot or an apostrophe at the start of a line would be a roff request.
      const bool startsLine = out.empty() || out.back() == '\n';
      if (startsLine && (c == '.' || c == '\'')) out += "\\&";
      out += c;
    }
  }
  return out;
}

void writeOption(const CLI::Option& option, bool isPositional) {
  const CLI::Formatter formatter;
  const std::string name = formatter.make_option_name(&option, isPositional);
  std::cout << ".TP\n\\fB" << roff(name) << "\\fR" << roff(formatter.make_option_opts(&option))
            << "\n"
            << roff(formatter.make_option_desc(&option)) << "\n";
}

// The footer holds examples, which keep their line breaks.
void writeCommand(const CLI::App& command) {
  std::cout << ".SS vexa " << roff(command.get_name());
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional()) std::cout << " " << roff(option->get_name(true));
  }
  std::cout << "\n" << roff(command.get_description()) << ".\n";
  for (const CLI::Option* option : command.get_options()) {
    writeOption(*option, option->get_positional());
  }
  if (!command.get_footer().empty()) {
    std::cout << ".PP\n.nf\n" << roff(command.get_footer()) << "\n.fi\n";
  }
}

void writeManual(const CLI::App& app) {
  std::cout << ".TH VEXA 1 \"\" \"Vexa " VEXA_VERSION "\" \"User Commands\"\n"
            << ".SH NAME\nvexa \\- keyframes, paths and skinned animation at a frame\n"
            << ".SH SYNOPSIS\n.B vexa\n.I COMMAND\n[\\fIOPTIONS\\fR]\n.SH OPTIONS\n";
  for (const CLI::Option* option : app.get_options()) writeOption(*option, false);
  std::cout << ".SH COMMANDS\n";
  for (const CLI::App* command : app.get_subcommands({})) writeCommand(*command);
  std::cout << ".SH EXIT STATUS\n0 on success, 1 for bad input, 2 for bad usage.\n";
}

// Every name of an option: "--frames", "-h".
std::string namesOf(const CLI::App& app) {
  std::string names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_snames()) names += " -" + name;
    for (const std::string& name : option->get_lnames()) names += " --" + name;
  }
  return names.empty() ? names : names.substr(1);
}

void writeCompletion(const CLI::App& app) {
  std::string commands, cases;
  for (const CLI::App* command : app.get_subcommands({})) {
    commands += command->get_name() + " ";
    cases += "    " + command->get_name() + ") words='" + namesOf(*command) + "' ;;\n";
  }
  std::cout << "# Completion of vexa for bash: commands, their options, and file names.\n"
               "_vexa() {\n"
               "  local words word=${COMP_WORDS[COMP_CWORD]}\n"
               "  case ${COMP_WORDS[1]} in\n"
            << cases << "    *) words='" << commands << namesOf(app) << "' ;;\n"
            << "  esac\n"
               "  if [[ $COMP_CWORD -eq 1 || $word == -* ]]; then\n"
               "    COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
               "  else\n"
               "    COMPREPLY=($(compgen -f -- \"$word\"))\n"
               "  fi\n"
               "}\n"
               "complete -o filenames -F _vexa vexa\n";
}

}  // namespace

int main(int argc, char** argv) try {
  const std::string what = argc == 2 ? argv[1] : "";
  CLI::App app;
  vexa::cli::setUp(app);
  if (what == "man") {
    writeManual(app);
  } else if (what == "bash") {
    writeCompletion(app);
  } else {
    std::fputs("usage: vexa_manual man|bash\n", stderr);
    return 2;
  }
  return std::cout.flush().good() ? 0 : 1;
} catch (const std::exception& error) {
  std::fprintf(stderr, "vexa_manual: %s\n", error.what());
  return 1;
}
