// bsconv: the library's conversions at the command line. Exit status 0 on success, 1 when a
// conversion fails (one line on standard error: message number, trace text, inserts), 2 on a
// usage error.

#include <bsutils/version.h>

#include <iostream>

#include "common.h"

int main(int argc, char** argv) {
  CLI::App app{"bsconv: decode and encode mainframe-era fields, convert text between code pages"};
  app.set_version_flag("--version", "bsconv " BSUTILS_VERSION_STRING);
  app.require_subcommand(1);
  addFieldCommands(app);
  addConvertCommands(app);
  addDemoCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // --help is a parse "error" too, with status 0.
    return app.exit(error) == 0 ? 0 : kExitUsage;
  } catch (const UsageError& error) {
    std::cerr << "bsconv: " << error.what() << '\n';
    return kExitUsage;
  } catch (const CommandFailure& failure) {
    std::cout.flush();
    std::cerr << "bsconv: " << failure.what() << '\n';
    return kExitConversionFailure;
  } catch (const ZanException& failure) {
    std::cerr << failureLine(failure) << '\n';
    return kExitConversionFailure;
  }
  return 0;
}
