"""The sizes of the two palettes, and the middles of their items from the window's corner."""

FEATURES, MOVE_COSTS = (300, 255), (285, 210)
CLOSE_BOX = (12, 9)

HI_LOW, WOODS, TOWN, ROAD, MISC_LOS = [(19, 48 + 16 * i) for i in range(5)]
NO_GO_1, NO_GO_2, NO_GO_3 = [(19, 147 + 16 * i) for i in range(3)]
SHOW_ALL = (197, 147)
SOLID_GRID, BLACK_GRID, RED_GRID, PURPLE_GRID, GREEN_GRID = [(149, 48 + 16 * i) for i in range(5)]
REMOVE_FEATURES = (70, 201)

COSTS = {code: (19, 50 + 16 * i) for i, code in enumerate((0, 1, 2, 3, 4, 6))}
SOLID_BRUSH, DOT_BRUSH, FRAME_BRUSH = [(189, 50 + 16 * i) for i in range(3)]
ZERO_COSTS, ROUGH_TOWNS = (65, 155), (199, 155)
