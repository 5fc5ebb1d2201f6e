// omu::current_locale ?-category NAME? ?locale?
// Shows the locale of the program as a table, after setting it if one is given. Fails for a category or a
// locale that is not known, and changes nothing then.
#include <clocale>
#include <locale>
#include <stdexcept>
#include <string_view>

#include "platform/env/HUTTextTable.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace set_locale {

namespace {

constexpr struct {
    const char* name;
    int category;
} categories[] = {
    {"LC_CTYPE", LC_CTYPE},
    {"LC_NUMERIC", LC_NUMERIC},
    {"LC_TIME", LC_TIME},
    {"LC_COLLATE", LC_COLLATE},
    {"LC_MONETARY", LC_MONETARY},
    {"LC_MESSAGES", LC_MESSAGES},
    {"LC_ALL", LC_ALL},
    {"LC_PAPER", LC_PAPER},
    {"LC_NAME", LC_NAME},
    {"LC_ADDRESS", LC_ADDRESS},
    {"LC_TELEPHONE", LC_TELEPHONE},
    {"LC_MEASUREMENT", LC_MEASUREMENT},
    {"LC_IDENTIFICATION", LC_IDENTIFICATION},
};

int category_of(const std::string& name) {
    for (const auto& known : categories) {
        if (name == known.name) {
            return known.category;
        }
    }
    throw HTCErrors::command_failed("No such category '" + name + "'");
}

void set_category(const std::string& category, const std::string& locale) {
    if (!std::setlocale(category_of(category), locale.c_str())) {
        throw HTCErrors::command_failed("Bad locale " + locale);
    }
}

void set_all(const std::string& locale) {
    try {
        std::locale::global(std::locale(locale));
    } catch (const std::runtime_error&) {
        throw HTCErrors::command_failed("Bad locale " + locale);
    }
}

std::string locale_table() {
    HUTTextTable table;
    table.setHeaders({"Category", "Value"});
    // One name, or "LC_CTYPE=C.UTF-8;LC_NUMERIC=C;..." where the categories differ.
    std::string_view current = std::setlocale(LC_ALL, nullptr);
    if (current.find('=') == current.npos) {
        table.addRow({"LC_ALL", std::string(current)});
        current = {};
    }
    while (!current.empty()) {
        const std::string_view part = current.substr(0, current.find(';'));
        const size_t equals = std::min(part.find('='), part.size());
        table.addRow({std::string(part.substr(0, equals)),
                      std::string(part.substr(std::min(equals + 1, part.size())))});
        current.remove_prefix(std::min(part.size() + 1, current.size()));
    }
    table.addRow({"C++", std::locale().name()});
    return table.getAsString();
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::current_locale";

    static void load_description() {
        in_categories("Tools");
        description_instance("Get or set the current program locale", "table of the locale's categories")
            .add_options()
            .add_option("locale", options::value<std::string>(),
                        "Name of locale to set. Use  to set local to system locale. If not specified, then "
                        "print the current locale")
            .add_option("category", options::value<std::string>(),
                        "Name of c-locale category to set. Only specified category will be changed, the C++ "
                        "locale remains unchanged");
        positional_instance().add("locale", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto locale = get_given<std::string>("locale");
        const auto category = get_given<std::string>("category");
        if (locale && category) {
            set_category(*category, *locale);
        } else if (locale) {
            set_all(*locale);
        }
        return set_result(interp, locale_table());
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace set_locale
