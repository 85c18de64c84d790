-- Which of these documents are known, and in which files they are.
SELECT hash, argMax(file, written) FROM document WHERE hash IN ({hashes}) GROUP BY hash FORMAT RowBinary
