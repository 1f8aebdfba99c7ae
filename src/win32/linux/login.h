// What the login manager (login1 on the system bus) knows of this session. Each call asks anew, and waits at
// most two seconds for each answer: where there is no bus or no login manager, nothing is blocked or locked.
#pragma once

// A program has asked it for the session not to become idle.
bool LoginBlocksIdle();
bool SessionIsLocked();
// Asks for the session to be locked, which the desktop's own lock program then does; says on stderr what
// went wrong.
void LockSession();
