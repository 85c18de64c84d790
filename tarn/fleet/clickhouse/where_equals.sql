-- Facts that hold now and have this value.
SELECT host, place, newest
FROM (
  -- The newest row of each host and place; only of those that showed such a value once.
  SELECT host, place, argMax(value, since) AS newest, argMax(there, since) AS holds
  FROM fact
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
    AND sipHash64(place, host) IN (
      SELECT sipHash64(place, host) FROM fact
      WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
        AND value = {value}
    )
  GROUP BY pointer, place, host
  UNION ALL
  SELECT host, place, argMax(value, since) AS newest, toUInt8(1) AS holds
  FROM latest
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
    AND sipHash64(place, host) IN (
      SELECT sipHash64(place, host) FROM latest
      WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
        AND value = {value}
    )
  GROUP BY pointer, place, host
)
WHERE holds = 1 AND place LIKE {like}
  AND newest = {value}
ORDER BY host, place
