// The choice of method by length: which factors a transform is decomposed into, and when not.
#pragma once

#include <vector>

namespace dft {

// The passes' radices for a complex transform of n points, in the order in which the passes run;
// empty if n calls for the convolution method. `real` tells an odd length on real data from half
// of an even length.
std::vector<int> radices(int n, bool real);

// The same for a transform in the lanes of vectors, where the order does not matter: a 2 and a 3
// make a 6.
std::vector<int> lane_radices(int n);

// The cheap length of at least 2 n - 1 in which the convolution method works.
int chirp_length(int n);

}  // namespace dft
