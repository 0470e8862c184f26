#pragma once
// The prenatal epoch: a moment some nine lunar months before a birth at which the Moon stands on
// the birth's ascendant or descendant. From the birth in work row 5 the calculation finds the
// month-return date (the Moon, or its elongation from the Sun, back where it was at birth the
// chosen number of months earlier) and the four candidates around it, the Moon on the birth
// ascendant (asc1 the nearer, asc2 a month on the other side) and on the descendant (desc1,
// desc2), and marks the one the rule selects.
#include "session/event.h"

namespace celestark {

struct Session;

// The whole calculation from the epoch state's months and kind and the birth in row 5, whose
// epoch place cells say where the epoch is cast. Rows 6 to 10 and the epoch state take the
// results; the candidates' rows end in Greenwich time. The calculation switches and the accuracy
// level are restored afterwards.
void calculate_epoch(Session& s);

// The row's civil time turned to Greenwich time, and its zone cells saying so.
void to_greenwich(EventRow& row);
// Moves the row's date and time on by a number of days (back when negative).
void add_days(EventRow& row, double days);

// Moves the birth in row 5 by the signed amounts and calculates again.
void adjust_birth(Session& s, int hours, int minutes, int seconds, int msecs);

// The birth time correction: moves the birth in row 5 forward (direction 1) or backward (-1)
// until one of the candidates' ascendants or descendants meets the birth Moon within a hundredth
// of a second of birth time. False when it had not settled after `max_steps` moves (near the
// poles, where the ascendant races and jumps); the rows then hold the last move and the birth's
// line says so. Below the polar circles it settles within twenty moves; a move costs one
// calculation of the epoch, about half a millisecond.
bool correct_birth(Session& s, int direction, int max_steps = 400);

// The Moon waxing: ahead of the Sun by less than half a circle (a Moon on the Sun is waning).
bool moon_waxing(double moon, double sun);
// The Moon above the horizon: in the half of the zodiac before the ascendant (on the ascendant
// counts as above).
bool moon_above(double moon, double ascendant);

// The chosen candidate (1 asc1, 2 asc2, 3 desc1, 4 desc2) into an event row, with the birth of
// row 5 (corrected or not): the epoch's place, date and Greenwich time, the angle the Moon stands
// on, the months and their kind, and the epoch flag.
void put_epoch_in_event(const Session& s, EventRow& event, int candidate);

// The factor a correction step is damped by, for a step of `seconds` (its size).
double correction_damping(double seconds);

} // namespace celestark
