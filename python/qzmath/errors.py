"""Exceptions raised where a QZMath function reports failure."""


class QZMathError(Exception):
    """Base of every failure the library reports through its result value."""


class InvalidArgumentError(QZMathError, ValueError):
    """An initialiser refused its arguments; the record is left unusable."""


class StateError(QZMathError):
    """An operation refused the record in its current state: not initialised, or (for the
    queries of the N-axis trackers) a reset pending until the next step."""


class SingularError(QZMathError, ArithmeticError):
    """A matrix was singular or not positive definite, or a geometric construction had no
    unique answer (parallel lines, a zero-length direction)."""


class ConvergenceError(QZMathError, ArithmeticError):
    """An iterative decomposition stopped without converging."""
