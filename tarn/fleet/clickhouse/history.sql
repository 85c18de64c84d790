-- What changed on a host, and when: each row is a value that began at that moment, or a place that went away. A row that
-- was written again counts as it was written last.
SELECT since, place, argMax(value, version), argMax(there, version)
FROM history
WHERE host = {host}
  -- At the pointer or below it.
  AND ({pointer} = '*' OR substring(concat(pointer, '/'), 1, length({pointer}) + 1) = concat({pointer}, '/'))
  AND (place LIKE {like} OR place LIKE concat({like}, '/%') OR place LIKE concat({like}, '[%'))
GROUP BY since, place
HAVING argMax(void, version) = 0
ORDER BY since, place
