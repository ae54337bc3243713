#pragma once

#include <osg/Callback>
#include <osg/Image>
#include <osg/Matrixd>
#include <osg/StateSet>
#include <osg/ref_ptr>

#include <vector>

class Board;
class Relief;

/// The ground as it is seen, in one picture: its grain, the fade of its edge and the board's soft
/// shadow, which is laid anew when the board has turned. So a pixel of the ground costs one look.
/// Works when the ground is about to be drawn.
class BoardShadow : public osg::NodeCallback
{
public:
    /// As a cull callback of the ground, whose state it also furnishes. A `grain` that is null or
    /// has no picture leaves the ground plain.
    BoardShadow(const Board& board, const Relief& relief, const osg::Image* grain,
                osg::StateSet& groundState);

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override;

private:
    /// A picture of a cell a point: how much of the sky the board hides.
    struct Cover
    {
        int width;
        int height;
        std::vector<float> points;

        explicit Cover(const Relief& relief);
        void blur(int step);
        /// At a place on the board, the board's middle being (0, 0).
        float at(float x, float y) const;
    };

    void paintGround(const osg::Image* grain);
    void layShadow(const osg::Matrixd& worldToBoard);

    const Board& board;
    Cover cover;
    osg::Matrixd shownPose;
    bool shown = false;
    std::vector<float> lit;    // by point, what the ground shows in full light, 0 to 255
    std::vector<float> faded;  // by point and colour, what the sky adds
    osg::ref_ptr<osg::Image> picture;
};
