/// \file
/// The two passes of a step against a reference on the processor, closed forms of single cells, and the
/// volume.

#include "DropletScene.h"

#include <OpenSG/OSGReal16.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

struct Parameters
{
    float timeStep = 0.4f;
    float density = 1.0f;
    float viscosity = 1.0f;
    float frictionN = 8.0f;
    float frictionSigma = 0.5f;
    Vec3f force = Vec3f(0.0f, -0.1f, 0.0f);
    Matrix worldToObject;
};

struct Vector
{
    double x, y, z;
};

double dot(const Vector &a, const Vector &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Vector decoded(const std::array<float, 4> &texel)
{
    return {double(texel[0]) * 2 - 1, double(texel[1]) * 2 - 1, double(texel[2]) * 2 - 1};
}

double attenuation(double x, const Parameters &p)
{
    const double damped =
        std::exp(-std::pow(1 - x, double(p.frictionN)) / double(p.frictionSigma)) * double(p.viscosity);
    return std::clamp(damped, 0.0, 1.0);
}

/// What a cell's velocity and volume are behind the force pass.
std::array<double, 3> forced(const std::array<float, 4> &cell, const Vector &normal, const Vector &tangent,
                             const Parameters &p)
{
    const double volume = std::clamp(double(cell[2]), 0.0, 1.0);
    Vec3f inObject;
    p.worldToObject.mult(p.force, inObject);
    const double pull = 1 / (double(p.density) * std::max(0.01, volume));
    const Vector acceleration = {double(inObject[0]) * pull, double(inObject[1]) * pull,
                                 double(inObject[2]) * pull};
    const Vector biTangent = {normal.y * tangent.z - normal.z * tangent.y,
                              normal.z * tangent.x - normal.x * tangent.z,
                              normal.x * tangent.y - normal.y * tangent.x};
    const double factor = attenuation(volume, p);
    return {(double(cell[0]) + dot(tangent, acceleration) * double(p.timeStep)) * factor,
            (double(cell[1]) + dot(biTangent, acceleration) * double(p.timeStep)) * factor, volume};
}

/// How far the liquid of a cell moves.
std::array<double, 2> moved(const std::array<float, 4> &cell, double timeStep)
{
    const double x = double(cell[0]) * timeStep, y = double(cell[1]) * timeStep, length = std::hypot(x, y);
    return length > 1 ? std::array<double, 2>{x / length, y / length} : std::array<double, 2>{x, y};
}

/// The volumes behind the advection, scattered instead of gathered, the border not emptied and nothing cut.
std::vector<double> scattered(const Map &map, double timeStep)
{
    std::vector<double> result(map.cells.size(), 0.0);
    for(int y = 0; y < map.height; ++y)
        for(int x = 0; x < map.width; ++x)
        {
            const auto d = moved(map.at(x, y), timeStep);
            const double wx = std::abs(d[0]), wy = std::abs(d[1]), volume = double(map.at(x, y)[2]);
            const int toX = (x + (d[0] > 0 ? 1 : -1) + map.width) % map.width;
            const int toY = (y + (d[1] > 0 ? 1 : -1) + map.height) % map.height;
            result[std::size_t(y * map.width + x)] += volume * (1 - wx) * (1 - wy);
            result[std::size_t(y * map.width + toX)] += volume * wx * (1 - wy);
            result[std::size_t(toY * map.width + x)] += volume * (1 - wx) * wy;
            result[std::size_t(toY * map.width + toX)] += volume * wx * wy;
        }
    return result;
}

/// What linear filtering at the middle of a texel may mix in of its neighbours: texture coordinates are
/// floats, and one of up to 1 that is half a step off is that, times the map's size, of a texel off; there
/// are two such roundings.
double mixedIn(const Map &map, int x, int y)
{
    float largest = 0;
    for(int dy = -1; dy <= 1; ++dy)
        for(int dx = -1; dx <= 1; ++dx)
            for(std::size_t channel = 0; channel < 3; ++channel)
                largest = std::max(largest, std::abs(map.wrapped(x + dx, y + dy)[channel]));
    return double(largest) * std::max(map.width, map.height) * std::ldexp(1.0, -23);
}

struct Simulation
{
    Stage stage;
    Held<NodePtr> object{makeObject()};
    DropletFlow flow;
    Parameters parameters;

    Simulation(int width, int height) : flow(object, NullFC, width, height, 0, NullFC) {}

    void apply()
    {
        const Parameters &p = parameters;
        flow.setSimulationParameters(0.01f, p.timeStep, p.density, p.viscosity, p.frictionN, p.frictionSigma);
        flow.setForce(p.force);
    }
    void bake(float angle)
    {
        std::srand(11);
        flow.createNoiseMap(32, 32);
        flow.bakeSurfaceMaps(angle);
    }
    void step() { EXPECT_FALSE(flow.tick(nullptr, 0.0, 0)); }
    Map force() { return stage.read(flow.getSurfaceMap(0)); }
    Map advection() { return stage.read(flow.getSurfaceMap(1)); }
    void fill(const Map &map) { stage.write(flow.getSurfaceMap(1), map); }
    /// Fills only one cell.
    void fill(int x, int y, std::array<float, 4> cell)
    {
        Map map(advection().width, advection().height);
        map.at(x, y) = cell;
        fill(map);
    }
};

Map seededMap(int width, int height, unsigned seed, float speed, float volume)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> speeds(-speed, speed), volumes(0.0f, volume);
    Map map(width, height);
    for(auto &cell : map.cells)
        cell = {speeds(random), speeds(random), random() % 3 == 0 ? 0.0f : volumes(random), 0.0f};
    return map;
}

struct Case
{
    const char *name;
    int width, height;
    unsigned seed;
    Parameters parameters;
    float tilt;
};

std::vector<Case> cases()
{
    Parameters gentle;
    Parameters strong;
    strong.force = Vec3f(0.3f, -2.0f, 0.7f);
    strong.density = 2.5f;
    strong.viscosity = 1.7f;
    strong.frictionN = 3.0f;
    strong.frictionSigma = 0.1f;
    strong.timeStep = 0.1f;
    return {{"gentle", 64, 64, 1, gentle, 0.52f},
            {"strong", 64, 32, 2, strong, 0.9f},
            {"uneven", 100, 60, 3, strong, 0.3f}};
}

} // namespace

TEST(DropletStep, AgreesWithTheReferenceCellByCellOver200Steps)
{
    for(const Case &c : cases())
    {
        SCOPED_TRACE(std::string(c.name) + ", seed " + std::to_string(c.seed));
        Simulation simulation(c.width, c.height);
        simulation.parameters = c.parameters;
        // The object stands turned in the world.
        const TransformPtr place = Transform::create();
        Matrix turn;
        turn.setRotate(Quaternion(Vec3f(0, 0, 1), 0.5f));
        place->setMatrix(turn);
        endEditCP(place);
        const Held<NodePtr> world(makeNodeFor(place));
        world->addChild(simulation.object);
        simulation.flow.updateInvViewMatrix();
        simulation.parameters.worldToObject.setRotate(Quaternion(Vec3f(0, 0, 1), -0.5f));
        simulation.apply();
        simulation.bake(c.tilt);
        const Map normals = simulation.stage.read(simulation.flow.getNormalMap());
        const Map tangents = simulation.stage.read(simulation.flow.getTangentMap());
        simulation.fill(seededMap(c.width, c.height, c.seed, 3.0f, 0.9f));

        Map before = simulation.advection();
        double worstForce = 0, worstAdvection = 0; // in steps of half floats, beyond what filtering mixes in
        const auto off = [](double actual, double expected, double mixed) {
            return (std::abs(actual - expected) - mixed) / halfStep(expected);
        };
        for(int step = 0; step < 200; ++step)
        {
            simulation.step();
            const Map force = simulation.force();
            const Map advection = simulation.advection();
            const std::vector<double> volumes = scattered(force, double(c.parameters.timeStep));
            for(int y = 0; y < c.height; ++y)
                for(int x = 0; x < c.width; ++x)
                {
                    const std::size_t i = std::size_t(y * c.width + x);
                    const double mixed = mixedIn(before, x, y);
                    const auto expected = forced(before.cells[i], decoded(normals.cells[i]),
                                                 decoded(tangents.cells[i]), simulation.parameters);
                    for(std::size_t channel = 0; channel < 3; ++channel)
                        worstForce = std::max(worstForce,
                                              off(double(force.cells[i][channel]), expected[channel], mixed));
                    ASSERT_EQ(force.cells[i][3], 0.0f);

                    const double mixedLater = mixedIn(force, x, y);
                    const double volume = x == 0 || y == 0 ? 0.0 : std::clamp(volumes[i], 0.0, 1.0);
                    worstAdvection =
                        std::max(worstAdvection, off(double(advection.cells[i][2]), volume, mixedLater));
                    for(std::size_t channel = 0; channel < 2; ++channel)
                        worstAdvection =
                            std::max(worstAdvection, off(double(advection.cells[i][channel]),
                                                         double(force.cells[i][channel]), mixedLater));
                    ASSERT_EQ(advection.cells[i][3], 0.0f);
                }
            before = advection;
        }
        std::printf("%s: at most %.3f (force), %.3f (advection) steps of half floats off\n", c.name,
                    worstForce, worstAdvection);
        // GL leaves open whether a half float is rounded or cut, and how exact exp and pow are: 2^-17 is
        // granted, which is a 64th of a step at most.
        EXPECT_LE(worstForce, 1.0 + 1.0 / 64.0);
        EXPECT_LE(worstAdvection, 1.0);
    }
}

TEST(DropletStep, KeepsTheVolumeButForWhatTheBorderRemoves)
{
    Simulation simulation(64, 48);
    simulation.parameters.force = Vec3f(0, 0, 0);
    simulation.parameters.viscosity = 1000.0f; // nothing is damped
    simulation.apply();
    simulation.bake(0.0f);
    // A swirl over the whole map, which carries liquid over all four borders.
    Map map(64, 48);
    for(int y = 0; y < 48; ++y)
        for(int x = 0; x < 64; ++x)
            map.at(x, y) = {1.2f - 0.05f * float(y), 0.05f * float(x) - 1.6f,
                            0.02f + 0.0002f * float((x * 7 + y * 13) % 100), 0};
    simulation.fill(map);
    Map before = simulation.advection();
    double removed = 0;
    for(int step = 0; step < 200; ++step)
    {
        simulation.step();
        const Map force = simulation.force();
        const std::vector<double> volumes = scattered(force, 0.4);
        double border = 0, rounding = 0;
        for(int y = 0; y < 48; ++y)
            for(int x = 0; x < 64; ++x)
            {
                const double volume = volumes[std::size_t(y * 64 + x)];
                ASSERT_LT(volume, 1.0);
                (x == 0 || y == 0 ? border : rounding) += x == 0 || y == 0 ? volume : halfStep(volume);
            }
        const Map after = simulation.advection();
        EXPECT_NEAR(after.volume(), before.volume() - border, rounding);
        removed += border;
        before = after;
    }
    // The rule was at work, and liquid is left.
    EXPECT_GT(removed, 1.0);
    EXPECT_GT(before.volume(), 1.0);
}

TEST(DropletStep, LosesNothingInsideOfTheMap)
{
    Simulation simulation(64, 64);
    simulation.parameters.force = Vec3f(0, 0, 0);
    simulation.parameters.viscosity = 1000.0f;
    simulation.apply();
    simulation.bake(0.0f);
    // A block that moves right and up by whole cells: exact in half floats.
    Map map(64, 64);
    for(int y = 20; y < 30; ++y)
        for(int x = 10; x < 20; ++x)
            map.at(x, y)[2] = 0.5f;
    for(auto &cell : map.cells)
        cell[0] = 2.5f;
    simulation.fill(map);
    for(int step = 0; step < 40; ++step)
    {
        simulation.step();
        ASSERT_NEAR(simulation.advection().volume(), 50.0, 0.05) << step;
    }
    const Map after = simulation.advection();
    EXPECT_NEAR(after.at(55, 25)[2], 0.5f, 0.01f);
    EXPECT_NEAR(after.at(45, 25)[2], 0.0f, 0.01f);
}

TEST(DropletStep, AStandingCellKeepsItsVolume)
{
    Simulation simulation(16, 16);
    simulation.parameters.force = Vec3f(0, 0, 0);
    simulation.apply();
    simulation.bake(0.52f);
    simulation.fill(5, 6, {0, 0, 0.7f, 0});
    const float volume = simulation.advection().at(5, 6)[2];
    for(int i = 0; i < 10; ++i)
        simulation.step();
    const Map map = simulation.advection();
    EXPECT_EQ(map.at(5, 6)[2], volume);
    EXPECT_EQ(map.volume(), double(volume));
}

TEST(DropletStep, LiquidMovesByOneCellAtMost)
{
    Simulation simulation(16, 16);
    simulation.parameters.force = Vec3f(0, 0, 0);
    simulation.parameters.viscosity = 1000.0f;
    simulation.apply();
    simulation.bake(0.0f);
    simulation.fill(5, 6, {100, 0, 0.5f, 0});
    simulation.step();
    EXPECT_EQ(simulation.advection().at(6, 6)[2], 0.5f);
    EXPECT_EQ(simulation.advection().at(5, 6)[0], 100.0f) << "the velocity stays with its cell";
    simulation.fill(5, 6, {0, -1000, 0.5f, 0});
    simulation.step();
    EXPECT_EQ(simulation.advection().at(5, 5)[2], 0.5f);
    // At 45 degrees a length of 1 goes to four cells.
    simulation.fill(5, 6, {50, 50, 0.5f, 0});
    simulation.step();
    const double s = std::sqrt(0.5);
    EXPECT_NEAR(simulation.advection().at(6, 7)[2], 0.5 * s * s, 3e-4);
    EXPECT_NEAR(simulation.advection().at(6, 6)[2], 0.5 * s * (1 - s), 3e-4);
    EXPECT_NEAR(simulation.advection().at(5, 7)[2], 0.5 * s * (1 - s), 3e-4);
    EXPECT_NEAR(simulation.advection().at(5, 6)[2], 0.5 * (1 - s) * (1 - s), 3e-4);
}

TEST(DropletStep, TheLeftAndTheLowerBorderLoseTheirLiquidTheOthersDoNot)
{
    Simulation simulation(16, 8);
    simulation.parameters.force = Vec3f(0, 0, 0);
    simulation.parameters.viscosity = 1000.0f;
    simulation.apply();
    simulation.bake(0.0f);
    for(const auto &[x, y, kept] :
        {std::tuple{0, 4, 0.0f}, {7, 0, 0.0f}, {15, 4, 0.5f}, {7, 7, 0.5f}, {1, 1, 0.5f}})
    {
        simulation.fill(x, y, {0, 0, 0.5f, 0});
        simulation.step();
        EXPECT_EQ(simulation.advection().volume(), double(kept)) << x << ", " << y;
    }
    // The map repeats: what flows out at the right comes in at the left, and is gone.
    simulation.fill(15, 4, {2.5f, 0, 0.5f, 0});
    simulation.step();
    EXPECT_EQ(simulation.force().at(15, 4)[2], 0.5f);
    EXPECT_EQ(simulation.advection().volume(), 0.0);
    // What flows out at the left comes in at the right, and stays.
    Map map(16, 8);
    map.at(0, 4) = {-2.5f, 0, 0.5f, 0};
    simulation.fill(map);
    simulation.step();
    EXPECT_EQ(simulation.advection().at(15, 4)[2], 0.5f);
}

TEST(DropletStep, AFullCellIsNotDampedAndAnEmptyOneFeelsAHundredthOfTheDensity)
{
    Simulation simulation(8, 8);
    simulation.parameters.force = Vec3f(0, 0, 0);
    simulation.parameters.viscosity = 3.0f;
    simulation.apply();
    simulation.bake(0.0f);
    simulation.fill(3, 3, {1.5f, -0.75f, 1.0f, 0});
    simulation.step();
    EXPECT_EQ(simulation.force().at(3, 3)[0], 1.5f);
    EXPECT_EQ(simulation.force().at(3, 3)[1], -0.75f);

    // Of a viscosity below 1 a full cell keeps that share.
    simulation.parameters.viscosity = 0.5f;
    simulation.apply();
    simulation.fill(3, 3, {1.5f, -0.75f, 1.0f, 0});
    simulation.step();
    EXPECT_NEAR(simulation.force().at(3, 3)[0], 0.75f, 1e-3f);

    // An empty map: force / (density * 0.01) * timeStep.
    simulation.parameters.viscosity = 1000.0f;
    simulation.parameters.density = 4.0f;
    simulation.parameters.force = Vec3f(0.25f, 0, 0);
    simulation.apply();
    simulation.fill(Map(8, 8));
    simulation.step();
    // The maps of normals and tangents have 8 bits: a zero is 0.004 there.
    EXPECT_NEAR(simulation.force().at(3, 3)[0], 0.25f / 0.04f * 0.4f, 2e-3f);
    // A thin film sticks: with the exponent of -2 of the default friction an eighth is left.
    simulation.parameters.viscosity = 1.0f;
    simulation.parameters.force = Vec3f(0, 0, 0);
    simulation.apply();
    Map thin(8, 8);
    thin.at(3, 3) = {8, 0, 0, 0};
    simulation.fill(thin);
    simulation.step();
    EXPECT_NEAR(simulation.force().at(3, 3)[0], 8 * std::exp(-2.0), 1e-3);
}

TEST(DropletStep, LeavesTheFiltersOfTheMapsAndTheDepthTestAsTheyWere)
{
    Simulation simulation(8, 8);
    simulation.bake(0.0f);
    for(const bool depthTest : {true, false})
    {
        depthTest ? glEnable(GL_DEPTH_TEST) : glDisable(GL_DEPTH_TEST);
        simulation.step();
        EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), GLboolean(depthTest));
        for(const TextureChunkPtr &map :
            {simulation.flow.getSurfaceMap(0), simulation.flow.getSurfaceMap(1),
             simulation.flow.getNormalMap(), simulation.flow.getTangentMap()})
        {
            simulation.stage.bind(map);
            for(const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            {
                GLint value = 0;
                glGetTexParameteriv(GL_TEXTURE_2D, filter, &value);
                EXPECT_EQ(value, GL_LINEAR);
            }
            glBindTexture(GL_TEXTURE_2D, 0);
        }
    }
    glEnable(GL_DEPTH_TEST);
}

TEST(DropletStep, AnObjectThatIsFlatInTheWorldFeelsTheForceAsItIs)
{
    Simulation simulation(8, 8);
    const TransformPtr place = Transform::create();
    Matrix flat;
    flat.setScale(2.0f, 0.0f, 2.0f);
    place->setMatrix(flat);
    endEditCP(place);
    const Held<NodePtr> world(makeNodeFor(place));
    world->addChild(simulation.object);
    simulation.flow.updateInvViewMatrix();
    EXPECT_EQ(uniform<Matrix>(simulation.flow.getForceShader(), "invViewMatrix"), Matrix());
    flat.setScale(2.0f, 4.0f, 2.0f);
    place->setMatrix(flat);
    endEditCP(place, Transform::MatrixFieldMask);
    simulation.flow.updateInvViewMatrix();
    Matrix expected;
    expected.setScale(0.5f, 0.25f, 0.5f);
    EXPECT_EQ(uniform<Matrix>(simulation.flow.getForceShader(), "invViewMatrix"), expected);
}
