/**
    The maker's name, as it stands before plug-in names and in folder names.
*/
#pragma once

namespace vesk
{

inline constexpr const char* companyName = "Veskora";

} // namespace vesk
