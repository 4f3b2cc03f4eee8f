#include "clientservices/modulebase.h"

namespace TessixDeskClient {

ModuleBase::ModuleBase() = default;
ModuleBase::~ModuleBase() = default;

void ModuleBase::StopWork()
{
    PostThreadMessageW(quitMessage, 0, 0);
    CommonAbility::WaitForThread(*this);
}

void ModuleBase::OnInit() { }
void ModuleBase::OnUserLogin() { }
void ModuleBase::OnUserLogout() { }
void ModuleBase::OnIntervalCheck() { }
void ModuleBase::OnResetdatabase() { }

} // namespace TessixDeskClient
