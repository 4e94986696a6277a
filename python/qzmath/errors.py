"""Exceptions raised where a QZMath function reports failure or an argument is refused, and the
warning issued where the library clamps or ignores a value."""


class QZMathError(Exception):
    """Base of every failure the library reports through its result value."""


class InvalidArgumentError(QZMathError, ValueError):
    """An argument was refused: a NaN or infinite limit, cycle time, window or count, a count out
    of range, or parameters the library's initialiser refused."""


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
