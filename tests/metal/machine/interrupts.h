#pragma once

// Routes a fault of the processor to the report, which ends the run with its own exit code.
void catchFaults();

// Lets the timer's interrupt through, and no other one.
void allowTimerInterrupt();

// Tells the interrupt controller that the timer's interrupt is taken.
void endOfInterrupt();
