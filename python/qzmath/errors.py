"""Exceptions raised where a QZMath function reports failure or an argument is refused, and the
warning issued where the library clamps or ignores a value."""

__all__ = ["QZMathError", "InvalidArgumentError", "StateError", "SingularError",
           "ConvergenceError", "QZMathWarning"]


class QZMathError(Exception):
    """Base of every failure the library reports through its result value."""


class InvalidArgumentError(QZMathError, ValueError):
    """An argument was refused: a NaN or infinite value anywhere (a target, a sample, an array
    element, a limit), a non-positive limit or cycle time, a zero-norm quaternion where a rotation
    is expected, a count out of range, parameters the library's initialiser refused, or input so
    large that the result would not be finite."""


class StateError(QZMathError):
    """An operation refused the record in its current state: not initialised, or (for the
    queries of the N-axis trackers) a reset pending until the next step."""


class SingularError(QZMathError, ArithmeticError):
    """A matrix was singular or not positive definite, or a geometric construction had no
    unique answer (parallel lines, a zero-length direction)."""


class ConvergenceError(QZMathError, ArithmeticError):
    """An iterative decomposition stopped without converging."""


class QZMathWarning(UserWarning):
    """A value was clamped or ignored by the library; the message names the value in effect."""
