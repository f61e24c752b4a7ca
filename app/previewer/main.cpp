// The previewer: draws one dialog or menu of a PE file as Windows lays it out.
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "preview/draw/previewer_run.h"

int main(int argc, char** argv) {
    try {
        const std::vector<std::string> arguments(argv + 1, argv + argc);
        return tervane::preview::RunPreviewer(tervane::preview::ParsePreviewerArguments(arguments),
                                              std::cout, std::cerr);
    } catch (const std::invalid_argument& mistake) {
        std::cerr << "TervanePreviewer: " << mistake.what()
                  << "\nusage: TervanePreviewer ?fp PATH ?rd dialog|menu ?rid ID [?s|?d] "
                     "[?dual|?notdual] [--png FILE] [--svg FILE] [--fit-json]\n";
        return 2;
    }
}
