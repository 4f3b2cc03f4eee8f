#include "databaseservice/drivedatatable.h"

namespace DatabaseService {

DriveDataTable::DriveDataTable(const DriveDataTable* source)
{
    if (source != nullptr) {
        *this = *source;
    }
}

DriveDataTable::~DriveDataTable() = default;

} // namespace DatabaseService
