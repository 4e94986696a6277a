// Helpers shared by the tests of the smoothed trackers.
#ifndef QZ_TEST_SUPPORT_H
#define QZ_TEST_SUPPORT_H

// The exact sum of an axis's averaging ring, in ring order from 0.0: what a re-summation gives.
template <class Record>
double RingSum(const Record &s, int axis) {
    double sum = 0.0;
    for (int k = 0; k < s.avgLen[axis]; ++k) sum = sum + s.ringBuf[axis][k];
    return sum;
}

#endif
