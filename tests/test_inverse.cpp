// The rigid-transform inverse. (The fixed-size inverses' bits are checked against LUP elsewhere.)
#include <Eigen/Dense>
#include <algorithm>

#include "test_linalg_support.h"

namespace {

using namespace qztest;

// T^-1 T = I for rotations about random axes; T's last row is never read; a zero position comes
// back as -0.0, the negation of a zero sum.
TEST(PGMatrixInv, UndoesARigidTransformWhateverItsLastRow) {
    using M4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;
    for (int c = 0; c < 500; ++c) {
        M4 T = M4::Identity(), Ti, Tg;
        if (c > 0) {  // the first case is the identity
            const Eigen::Vector3d axis = Eigen::Vector3d::Random().normalized();
            T.topLeftCorner<3, 3>() = Eigen::AngleAxisd(3.0 * axis[0], axis).matrix();
            T.block<3, 1>(0, 3) = Eigen::Vector3d::Random();
        }
        ASSERT_EQ(QZ_PGMatrixInv(T.data(), Ti.data()), 1);
        EXPECT_LT((Ti * T - M4::Identity()).cwiseAbs().maxCoeff(), 4e-15);
        T.row(3) << 5.0, -1.0, NAN, 0.0;
        QZ_PGMatrixInv(T.data(), Tg.data());
        ASSERT_TRUE(SameArray(Tg.data(), Ti.data(), 16));
        if (c == 0) EXPECT_ALL(std::signbit(Ti(0, 3)), Ti(0, 3) == 0.0, Ti(3, 3) == 1.0);
    }
}

}  // namespace
