/**
    How much of the machine's memory this process holds.

    Cost: one question to the system. Thread: any.
*/
#pragma once

namespace ambrel::soak
{

/** Mebibytes; 0 on a system that does not tell. */
double getResidentMemory();

} // namespace ambrel::soak
