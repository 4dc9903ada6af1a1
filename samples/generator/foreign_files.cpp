#include "foreign_files.h"

#include <algorithm>
#include <stdexcept>

#include "foreign_parts.h"

namespace quiverion::samples {
namespace {

constexpr ForeignSample kSamples[] = {
    {"openpiv5.txt", "openpiv", 5.1e-5, false, OpenPiv5},
    {"openpiv6.txt", "openpiv", 1e-2, true, OpenPiv6},
    {"jpiv.jvc", "openpiv", 5.1e-7, false, Jpiv},
    {"pivlab.txt", "pivlab", 1e-6, true, PivLab},
    {"pivlab_wide.txt", "csv", 1e-6, true, PivLabWide},
    {"pivlab.dat", "tecplot", 1e-6, false, PivLabTecplot},
    {"insight.vec", "tecplot", 5.1e-7, false, Insight},
    {"davis8.txt", "davis", 1e-4, false, Davis8},
    {"davis10.txt", "davis", 1e-4, false, Davis10},
    {"davis.dat", "tecplot", 1e-9, false, DavisTecplot},
    {"pivview.dat", "tecplot", 1e-4, true, PivViewText},
    {"block.dat", "tecplot", 1e-6, true, TecplotBlock},
    {"table.csv", "csv", 0, false, Csv},
    {"vc7_1.vc7", "vc7", 1e-5, true, [](const SampleField& field) { return Vc7(field, 1, false); }},
    {"vc7_2.vc7", "vc7", 1e-5, true, [](const SampleField& field) { return Vc7(field, 2, true); }},
    {"vc7_3.vc7", "vc7", 1e-5, true, [](const SampleField& field) { return Vc7(field, 3, true); }},
    {"vc7_4.vc7", "vc7", 1e-5, true, [](const SampleField& field) { return Vc7(field, 4, false); }},
    {"vc7_5.vc7", "vc7", 1e-5, true, [](const SampleField& field) { return Vc7(field, 5, true); }},
    {"cf.nc", "netcdf", 0, false, [](const SampleField& field) { return NetCdf(field, false); }},
    {"pivpy.nc", "netcdf", 0, false, [](const SampleField& field) { return NetCdf(field, true); }},
    {"pivlab.mat", "matlab", 0, true, Mat},
};

}  // namespace

std::span<const ForeignSample> ForeignSamples() {
  return kSamples;
}

const ForeignSample& ForeignSampleOf(std::string_view name) {
  const auto found = std::ranges::find(kSamples, name, &ForeignSample::name);
  if (found == std::end(kSamples)) throw std::invalid_argument("no such sample");
  return *found;
}

}  // namespace quiverion::samples
