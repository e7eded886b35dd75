/**
    Turns the signals that ask a program to stop into something that can be asked at a safe point, so that
    nothing half-written stays behind. A broken pipe and an exceeded file size become ordinary write errors.

        Interruption::install();
        Interruption::throwIfRequested();   // between two blocks
*/
#pragma once

namespace ambrel::render::Interruption
{

/** Call once, before any work. */
void install();

/** @throws Interrupted if the program was asked to stop */
void throwIfRequested();

} // namespace ambrel::render::Interruption
