#include "tcltasks/param/detail/param_report.h"

#include <boost/algorithm/string/case_conv.hpp>

#include "platform/env/HUTTextTable.h"
#include "platform/param/HPAParamHelper.h"

namespace param_report {

namespace {

const char* status_of(const HPAParam& param) {
    switch (param.state) {
    case HPAParam::deprecated:
        return "Deprecated";
    case HPAParam::obsolete:
        return "Obsolete";
    default:
        return "Active";
    }
}

} // namespace

std::string table(const std::vector<HPAParam*>& params, bool wide) {
    HUTTextTable table;
    table.setFoldLastColumn(true);
    std::vector<std::string> headers{"Name", "Value", "Default", "Type", "Status"};
    if (wide) {
        headers.emplace_back("Visible");
    }
    headers.emplace_back("Description");
    table.setHeaders(std::move(headers));
    for (const HPAParam* param : params) {
        std::vector<std::string> row{
            param->name, param_helper::get_value(*param), param_helper::get_default_value(*param),
            boost::to_lower_copy(std::string(HPATypeToString(param->type()))), status_of(*param)};
        if (wide) {
            row.emplace_back(param->visible ? "true" : "false");
        }
        row.push_back(param_helper::get_description(*param));
        table.addRow(std::move(row));
    }
    return table.getAsString(true);
}

} // namespace param_report
