#include "report/reports.h"

namespace report {

Reports::~Reports() = default;

} // namespace report
