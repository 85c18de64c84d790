-- Facts that hold now and have this text in them.
SELECT host, place, newest
FROM (
  -- The newest row of each host and place; only of those that showed such a value once.
  SELECT host, place, argMax(value, since) AS newest, argMax(there, since) AS holds
  FROM fact
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
    AND (pointer, place, host) IN (
      SELECT pointer, place, host FROM fact
      WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
        AND position(value, {value}) > 0
    )
  GROUP BY pointer, place, host
  UNION ALL
  SELECT host, place, argMax(value, since) AS newest, toUInt8(1) AS holds
  FROM latest
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
    AND (pointer, place, host) IN (
      SELECT pointer, place, host FROM latest
      WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
        AND position(value, {value}) > 0
    )
  GROUP BY pointer, place, host
)
WHERE holds = 1 AND place LIKE {like}
  AND position(newest, {value}) > 0
ORDER BY host, place
