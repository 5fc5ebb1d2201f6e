// Feeds any bytes to the netlist reader. What it accepts is unfolded, asked and closed; what it refuses must
// be refused by an Error and nothing else.

#include "design/ByteSource.h"
#include "design/Error.h"
#include "design/NetlistReader.h"
#include "design/Query.h"

#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    design::MemorySource source(std::string_view(reinterpret_cast<const char*>(data), size));
    try {
        design::Design d(design::read_netlist(source, "fuzz"), {});
        design::Query query;
        query.hierarchical = true;
        for (const design::Cell* cell : design::find_objects<design::Cell>(d, query))
            for (const std::string& name : design::list_properties(cell))
                design::get_property(cell, name);
        for (const design::Net* net : design::find_objects<design::Net>(d, query))
            for (uint32_t i = 0; i < net->pin_count(); ++i)
                if (net->pin(i)->net() != net)
                    __builtin_trap();
        for (const design::Pin* pin : design::find_objects<design::Pin>(d, query))
            (void)pin->name();
    } catch (const design::Error&) {
    }
    return 0;
}
