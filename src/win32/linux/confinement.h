// What the process gives up, so that a fault in a library that reads pictures or draws is worth less to who
// finds it. A hurdle, no wall: the user's files and the display stay within reach.
#pragma once

// Nothing that this process or one of its children starts gets more rights than they have: no setuid program
// does. Before there are threads.
void GiveUpNewPrivileges();

// From here on no thread of this process, of those that run already too, can start a program, look into
// another process, make a namespace, reach a network, or use what only services and tools need of the kernel;
// what is refused fails as if the user were not allowed to. Files, devices, threads, memory and the sockets
// of this machine remain: drivers want them at any time. Once OpenGL is there: before, a driver may start
// helpers. False: the kernel cannot do that, and all is as before.
bool Confine();
