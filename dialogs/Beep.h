/// The system's alert sound.
#pragma once

/// Sounds it; silent without a window system. Main thread only.
void SoundBeep();
