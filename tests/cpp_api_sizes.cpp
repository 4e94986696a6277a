// Compiled, never run: QZ_CASE 0 uses every family at sizes the library has and must compile
// cleanly under -Wall -Wextra -Wpedantic -Werror; each other case asks for a size the library
// does not have and must fail with the static_assert's message.
#include <qzmath/qzmath.hpp>
#ifdef QZ_WITH_EIGEN
#include <qzmath/eigen.hpp>
#endif

int main() {
#if QZ_CASE == 0
    qz::Mat<8, 8> m8{};
    const qz::Mat67 j{};
    qz::Vec<7> v7{};
    double sum =
        qz::det(m8) + qz::det(*qz::lup(m8)) + qz::vmv(v7, qz::Mat<7, 7>{}) + qz::dot(v7, v7);
    sum += qz::inverse(m8).value()[0] + qz::pinv(j).value()[0] + qz::mul(j, qz::transpose(j))[0];
    sum += qz::mul(j, v7)[0] + qz::cholesky(qz::identity<7>()).value()[0] +
           qz::eig(m8, 1e-12)->values[0];
    sum += qz::generalized_eig(qz::Mat6{}, qz::Mat6{}, 1e-12)->values[0] +
           qz::normalize(v7).value()[0];
    const qz::Mat4 t = qz::dh(qz::Rad{0.1}, 1.0, 2.0, qz::Rad{0.2});
    sum += qz::pose_xyz<qz::Deg>(t)->at(3) + qz::pose_zyz<qz::Rad>(t)->at(3) +
           qz::to_posquat(t)->at(6);
    sum += qz::angle<qz::Deg>(*qz::to_quat(t), *qz::slerp(qz::Quat{}, qz::Quat{}, 0.5))->value;
    sum += qz::jacobian_rotate(j, *qz::rotation(qz::RotVec{}))[0] + qz::sin(qz::Deg{30.0});
    qz::SmoothedTracker<7> arm(4.0, v7, v7, v7);
    qz::SmoothedMultiStageTracker<7> armM(4.0, v7, v7, v7, 1);
    qz::Tracker axis(1.0, 10.0, 10.0);
    sum += arm.step(v7).value()[0] + armM.step(v7).value()[0] + *axis.step(1.0);
    sum += qz::AveragingFilter<2>(10, 0.001).update({})->avg[0] +
           *qz::SmoothedValue(0, 0.1, 0.1, 0.01).update(1);
    sum += qz::Estimator<3>(4.0, {}, {}).step(1, {}, {})->at(0) +
           qz::OneStepFitter<2>(qz::Vec<2>{}).update({})->at(0);
    sum += qz::ErrorComparator().update({}, {})->at(0) +
           (axis.set_velocity_limit(5.0) == qz::Limit::ignored);
#ifdef QZ_WITH_EIGEN
    sum += qz::eigen::map(m8)(1, 2) + qz::eigen::map(v7)(3) +
           static_cast<double>(qz::eigen::as_qz(qz::eigen::map(j)).size());
#endif
    return sum > 0.0;
#elif QZ_CASE == 1
    return int(qz::inverse(qz::Mat<9, 9>{}).ok());
#elif QZ_CASE == 2
    return int(qz::pinv(qz::Mat<5, 7>{}).ok());
#elif QZ_CASE == 3
    return int(qz::mul(qz::Mat<5, 7>{}, qz::Mat<7, 7>{})[0]);
#elif QZ_CASE == 4
    return int(qz::normalize(qz::Vec<9>{}).ok());
#elif QZ_CASE == 5
    return int(qz::cholesky(qz::Mat<8, 8>{}).ok());
#elif QZ_CASE == 6
    return int(qz::pose_xyz<double>(qz::Mat4{})->at(0));
#endif
}
