#pragma once

/// Memory that this process holds now; what is free in the heap's own lists is given back before.
double residentMegabytes();
